#!/usr/bin/env bash
# Builds stashkeep for Windows, runs the unit tests under Wine, and makes the ZIP in out/packages/. The demo then runs
# with the program from the ZIP and must print the same as with the native program.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install.sh binutils-mingw-w64-x86-64 cmake g++-mingw-w64-x86-64-posix googletest ninja-build unzip wine64
cmake --preset windows ${CI:+-DCMAKE_COMPILE_WARNING_AS_ERROR=ON} >/dev/null
cmake --build --preset windows
ctest --preset windows

version=$(sed -n 's/^project(stashkeep VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
folder=stashkeep-$version-windows-x86_64
scripts/archive.sh out/windows "out/packages/$folder.zip"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
unzip -q "out/packages/$folder.zip" -d "$work"

# The libraries of MinGW-w64 have names like libstdc++-6.dll and do not come with Windows.
x86_64-w64-mingw32-objdump -p "$work/$folder/stashkeep.exe" >"$work/headers"
if grep 'DLL Name: lib' "$work/headers"; then
    exit 1
fi

scripts/demo.sh >"$work/native"
scripts/demo.sh "$PWD/scripts/wine.sh" "$work/$folder/stashkeep.exe" | tr -d '\r' | diff "$work/native" -
echo "The demo prints the same with out/packages/$folder.zip as with the native program."
