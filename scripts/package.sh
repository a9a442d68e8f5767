#!/usr/bin/env bash
# Makes the packages in out/packages/: a .deb, a .tar.gz with a static program, a ZIP for Windows, and the page, which the
# archives contain. All are built twice and must be equal; lintian checks the .deb. Those for Linux are then unpacked and
# tried.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install.sh build-essential cmake debhelper emscripten g++-mingw-w64-x86-64-posix libgtest-dev lintian man-db \
    ninja-build node-acorn strace zip
scripts/install_npm.sh
version=$(sed -n 's/^project(stashkeep VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
work=$(mktemp -d)

# build FOLDER: makes all packages in FOLDER, from a copy of the sources
build() (
    exec >"$work/log" 2>&1
    mkdir -p "$1/sources"
    # With node_modules/, so that the page is built without a network.
    tar --exclude=./.git --exclude=./build --exclude=./out -c . | tar --no-same-permissions -xC "$1/sources"
    cd "$1/sources"
    dpkg-buildpackage -us -uc -b
    cmake --preset release
    cmake --build --preset release
    scripts/archive.sh out/release "../stashkeep-$version-linux-$(uname -m).tar.gz"
    cmake --preset windows -DSTASHKEEP_TESTS=OFF
    cmake --build --preset windows
    scripts/archive.sh out/windows "../stashkeep-$version-windows-x86_64.zip"
    cp out/packages/stashkeep.html ..
)
# On exit, also shows why a build failed.
failed() {
    cat "$work/log" >&2
    rm -rf "$work"
}
trap failed EXIT
build "$work/first"
grep 'tests passed' "$work/log"
# Where strace is not permitted, users can do without the tests that need it.
if [ -n "${CI-}" ] && grep '(Skipped)' "$work/log"; then
    exit 1
fi
( # None of these may make a difference.
    umask 077
    export DEB_BUILD_OPTIONS=nocheck
    build "$work/second/with/a/longer/path"
)
trap 'rm -rf "$work"' EXIT
rm -rf out/packages
mkdir -p out/packages
cp "$work"/first/{stashkeep_*.deb,*.tar.gz,*.zip,stashkeep.html} out/packages
(cd out/packages && sha256sum -- *) | tee "$work/sums"
(cd "$work/second/with/a/longer/path" && sha256sum -c "$work/sums")
lintian --allow-root --display-info --pedantic --fail-on error,warning,info,pedantic "$work"/first/*.changes

# tryExample PROGRAM FOLDER: must print the same for the example in FOLDER as the build in its source tree
example=(check savegame.dat scripts/common/global/scr_{flags,collectableids,globaldefines}.asm)
tryExample() { (cd "$2/examples" && "$1" "${example[@]}") | diff "$work/expected" -; }
(cd "$work/first/sources/examples" && ../out/release/stashkeep "${example[@]}") >"$work/expected"

tar -xzf out/packages/*.tar.gz -C "$work"
archive=$(echo "$work"/stashkeep-*)
ldd "$archive/bin/stashkeep" | grep 'statically linked'
tryExample "$archive/bin/stashkeep" "$archive/share/doc/stashkeep"

dpkg-deb -x out/packages/*.deb "$work/deb"
tryExample "$work/deb/usr/bin/stashkeep" "$work/deb/usr/share/doc/stashkeep"
man -M "$work/deb/usr/share/man" -w stashkeep
scripts/check_completions.sh "$work/deb/usr"
