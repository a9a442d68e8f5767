#!/usr/bin/env bash
# Makes the packages in out/packages/: a .deb, a .tar.gz with a static program, and a ZIP for Windows.
# All are built twice and must be equal; lintian checks the .deb, which is then installed, tried and removed.
set -euo pipefail
cd "$(dirname "$0")/.."

if dpkg -s stashkeep >/dev/null 2>&1; then
    echo "Remove your stashkeep package first: this would replace it and then purge it." >&2
    exit 1
fi
scripts/install.sh build-essential cmake debhelper g++-mingw-w64-x86-64-posix lintian man-db ninja-build zip
version=$(sed -n 's/^project(stashkeep VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
work=$(mktemp -d)

# build FOLDER: makes all packages in FOLDER, from a copy of the sources
build() (
    exec >"$work/log" 2>&1
    mkdir -p "$1/sources"
    tar --exclude=./.git --exclude=./build --exclude=./out -c . | tar --no-same-permissions -xC "$1/sources"
    cd "$1/sources"
    dpkg-buildpackage -us -uc -b
    cmake --preset release
    cmake --build --preset release
    scripts/archive.sh out/release "../stashkeep-$version-linux-$(uname -m).tar.gz"
    cmake --preset windows -DSTASHKEEP_TESTS=OFF
    cmake --build --preset windows
    scripts/archive.sh out/windows "../stashkeep-$version-windows-x86_64.zip"
)
# tryExample PROGRAM FOLDER: must print the same for the example in FOLDER as the build in its source tree
example=(check savegame.dat scripts/common/global/scr_{flags,collectableids,globaldefines}.asm)
tryExample() { (cd "$2/examples" && "$1" "${example[@]}") | diff "$work/expected" -; }

trap 'cat "$work/log" >&2; rm -rf "$work"' EXIT # shows why a build failed
build "$work/first"
(umask 077; build "$work/second/with/a/longer/path")
trap 'rm -rf "$work"' EXIT
(cd "$work/first/sources/examples" && ../out/release/stashkeep "${example[@]}") >"$work/expected"
rm -rf out/packages
mkdir -p out/packages
cp "$work"/first/{stashkeep_*.deb,*.tar.gz,*.zip} out/packages
(cd out/packages && sha256sum -- *) | tee "$work/sums"
(cd "$work/second/with/a/longer/path" && sha256sum -c "$work/sums")
lintian --allow-root --display-info --pedantic --fail-on error,warning,info,pedantic "$work"/first/*.changes

tar -xzf out/packages/*.tar.gz -C "$work"
archive=$(echo "$work"/stashkeep-*)
ldd "$archive/bin/stashkeep" | grep 'statically linked'
tryExample "$archive/bin/stashkeep" "$archive/share/doc/stashkeep"

asRoot=()
[ "$(id -u)" -eq 0 ] || asRoot=(sudo)
trap '"${asRoot[@]}" dpkg --purge stashkeep; rm -rf "$work"' EXIT
"${asRoot[@]}" dpkg -i out/packages/*.deb
tryExample stashkeep /usr/share/doc/stashkeep
man -w stashkeep
scripts/check_completions.sh /usr
