#!/usr/bin/env bash
# Builds stashkeep for Windows, runs the unit tests under Wine, and makes out/windows/stashkeep-VERSION-windows-x86_64.zip.
# Then the program out of the ZIP runs the demo, which must print the same as that of the native program.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install.sh binutils-mingw-w64-x86-64 cmake g++-mingw-w64-x86-64-posix googletest ninja-build unzip wine64
cmake --preset windows ${CI:+-DCMAKE_COMPILE_WARNING_AS_ERROR=ON} >/dev/null
cmake --build --preset windows
ctest --preset windows

version=$(sed -n 's/^project(stashkeep VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
zip=$PWD/out/windows/stashkeep-$version-windows-x86_64.zip
scripts/archive.sh out/windows "$zip"
unzip -l "$zip"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
unzip -q "$zip" -d "$work"
exe=$work/stashkeep-$version-windows-x86_64/stashkeep.exe
x86_64-w64-mingw32-objdump -p "$exe" | sed -n 's/.*DLL Name: //p' | sort >"$work/dlls"
printf '%s\n' ADVAPI32.dll KERNEL32.dll msvcrt.dll | diff - "$work/dlls" # those that every Windows has

scripts/demo.sh >"$work/native"
scripts/demo.sh "$PWD/scripts/wine.sh" "$exe" | tr -d '\r' | diff "$work/native" -
echo "The demo prints the same with $zip as with the native program."
