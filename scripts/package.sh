#!/usr/bin/env bash
# Makes the packages in out/packages/ and checks them: a .deb, a .tar.gz with a program that needs no
# library, and the ZIP for Windows, which scripts/windows.sh makes and tries. Each is built twice, in
# different folders, and has to be the same to the byte; lintian has to find nothing; the .deb is
# installed, tried out and removed.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD

scripts/windows.sh
scripts/install.sh binutils cmake dpkg-dev g++ lintian man-db ninja-build
unset CFLAGS CPPFLAGS CXXFLAGS LDFLAGS DESTDIR
export LC_ALL=C.UTF-8 TZ=UTC
# All times in the packages are that of the release.
SOURCE_DATE_EPOCH=$(dpkg-parsechangelog -l packaging/debian/changelog -S Timestamp)
export SOURCE_DATE_EPOCH

work=$(mktemp -d)
# Another kind of file system lists files in another order.
elsewhere=/dev/shm
[ -w $elsewhere ] || elsewhere=${TMPDIR:-/tmp}
second=$(mktemp -d -p "$elsewhere")
clean() { rm -rf "$work" "$second"; }
trap clean EXIT
say() { printf '\n== %s\n' "$*"; }
fail() { echo "FAILED: $*" >&2 && exit 1; }

status=$(dpkg-query -W -f='${db:Status-Status}' stashkeep 2>/dev/null || true)
case $status in
    '' | not-installed) ;;
    *) fail "this would replace your stashkeep package ($status), and then purge it: remove it first" ;;
esac

# build FOLDER: both packages, from a copy of the sources in FOLDER
build() (
    mkdir -p "$1"
    tar -C "$root" --exclude=./.git --exclude=./build --exclude=./out -cf - . | tar -C "$1" -xf -
    cd "$1"
    cmake -S . -B shared -G Ninja -DCMAKE_INSTALL_PREFIX=/usr -DSTASHKEEP_STATIC=OFF
    cmake -S . -B static -G Ninja -DSTASHKEEP_STATIC=ON
    cmake --build shared
    cmake --build static
    cpack --config shared/CPackConfig.cmake -G DEB -B packages
    cpack --config static/CPackConfig.cmake -G TGZ -B packages
)

# tryExample PROGRAM DOCUMENTS: checks the savegame that is installed, and compares what is printed
tryExample() (
    cd "$2/examples"
    "$1" check savegame.dat scripts/common/global/scr_{flags,collectableids,globaldefines}.asm |
        diff <(withoutWarning "$root/tests/expected/example_check.txt") <(withoutWarning /dev/stdin)
)
withoutWarning() { sed 's/^Be aware .* builds!//' "$1"; }

# checkLinks FOLDER: each link of the documents in FOLDER has to lead to a file there
checkLinks() {
    local document link count=0
    while read -r document; do
        while read -r link; do
            case $link in http* | '#'*) continue ;; esac
            [ -e "$(dirname "$document")/$link" ] || fail "$document: no file $link"
            count=$((count + 1))
        done < <(grep -o '](.[^)]*)' "$document" | sed 's/](\(.*\))/\1/')
    done < <(find "$1" -name '*.md')
    [ "$count" -gt 0 ] || fail "$1: no document with a link"
    echo "$count links of its documents lead to files."
}

say "Building twice"
build "$work/first" >"$work/log" 2>&1 || { cat "$work/log" >&2 && exit 1; }
(umask 077 && build "$second/in a much longer path" >"$work/log" 2>&1) || { cat "$work/log" >&2 && exit 1; }
rm -rf out/packages
mkdir -p out/packages
cp "$work"/first/packages/*.{deb,tar.gz} out/windows/*.zip out/packages
(cd out/packages && sha256sum -- *.deb *.tar.gz) | tee "$work/sums"
(cd "$second/in a much longer path/packages" && sha256sum -c "$work/sums")
deb=$(echo out/packages/*.deb)
archive=$(echo out/packages/*.tar.gz)

say "$archive: $(wc -c <"$archive") bytes"
tar -tvzf "$archive"
tar -xzf "$archive" -C "$work"
unpacked=$work/$(basename "$archive" .tar.gz)
if readelf -ld "$unpacked/bin/stashkeep" | grep -E 'INTERP|NEEDED'; then
    fail "$archive: its program needs libraries"
fi
tryExample "$unpacked/bin/stashkeep" "$unpacked/share/doc/stashkeep"
echo "Its program runs and needs no library."
checkLinks "$unpacked/share/doc/stashkeep"
scripts/check_completions.sh "$unpacked"

say "$deb: $(wc -c <"$deb") bytes"
dpkg-deb --info "$deb"
dpkg-deb --contents "$deb"
lintian --allow-root --fail-on error,warning --display-info --pedantic "$deb"
echo "$(lintian --version): no error, no warning"
dpkg-deb --extract "$deb" "$work/deb"
checkLinks "$work/deb/usr/share/doc/stashkeep"

say "Installed, tried out and removed"
# What stands in /usr/local would come before what the package brings.
export PATH=/usr/bin:/bin:/usr/sbin:/sbin XDG_DATA_DIRS=/usr/share
FPATH=$(zsh -dfc 'print -r -- ${(j(:))fpath:#/usr/local/*}')
export FPATH
asRoot=()
[ "$(id -u)" -eq 0 ] || asRoot=(sudo)
"${asRoot[@]}" dpkg -i "$deb"
trap '"${asRoot[@]}" dpkg --purge stashkeep >/dev/null 2>&1 || :; clean' EXIT
dpkg -L stashkeep >"$work/files"
dpkg --verify stashkeep
found=$(type -P stashkeep) || fail "no stashkeep in $PATH"
[ "$found" = /usr/bin/stashkeep ] || fail "another stashkeep comes first: $found"
tryExample stashkeep /usr/share/doc/stashkeep
man -w stashkeep
scripts/check_completions.sh
"${asRoot[@]}" dpkg --purge stashkeep
while read -r file; do
    # So is a link that leads nowhere any more.
    if [ -L "$file" ] || { [ -e "$file" ] && [ ! -d "$file" ]; }; then fail "$file is still there"; fi
done <"$work/files"
