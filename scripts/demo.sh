#!/usr/bin/env bash
# Does a full round trip on generated test media: data file -> floppy discs -> data file -> memory image -> data file.
# Then prints what the savegame holds. Builds stashkeep first, or uses another one: scripts/demo.sh [PROGRAM...]
set -euo pipefail
cd "$(dirname "$0")/.."

stashkeep=("$@")
scripts/install.sh cc1541 cmake g++ ninja-build
if [ $# -eq 0 ]; then
    cmake --preset release >/dev/null
    cmake --build --preset release >/dev/null
    stashkeep=("$PWD/out/release/stashkeep")
fi
media=$(mktemp -d)
trap 'rm -rf "$media"' EXIT
cp -r examples/. "$media"
cd "$media"

run() {
    printf '$ stashkeep %s\n' "$*"
    "${stashkeep[@]}" "$@"
    echo
}
same() {
    cmp "$1" "$2"
    echo "$1 and $2 are the same, byte for byte."
}
changed() {
    cmp -l "$1.before" "$1" | wc -l || true
}
# The directory of a disc, without colours; of a copy, since cc1541 opens images for writing.
directory() {
    cp "$1" listed.d64
    cc1541 -4 listed.d64 | sed 's/\x1b\[[0-9]*m//g' | grep '^[0-9]'
}

printf '\n== Two floppy discs with a file each, and a memory image\n'
sh make_media.sh
for disc in disc2.d64 disc3.d64; do
    rm $disc
    cc1541 -4 -n "ZARNIS" -r 18 -f "LEVEL" -w scripts/common/global/scr_flags.asm $disc >/dev/null
    directory $disc >$disc.directory
    cp $disc $disc.before
done
cp game.reu game.reu.before
wc -c disc2.d64 disc3.d64 game.reu savegame.dat

printf '\n== Into the discs, and out again\n'
run implantd64 savegame.dat disc2.d64 disc3.d64
run extractd64 disc2.d64 disc3.d64 from_discs.dat
same savegame.dat from_discs.dat
for disc in disc2.d64 disc3.d64; do
    echo "$disc: $(changed $disc) bytes changed, and its directory is as before:"
    directory $disc | diff $disc.directory -
    cat $disc.directory
done

printf '\n== Into the memory image, and out again\n'
run implantreu from_discs.dat game.reu
run extractreu game.reu from_reu.dat
same savegame.dat from_reu.dat
echo "game.reu: $(changed game.reu) bytes changed."

printf '\n== What the savegame holds\n'
run check from_reu.dat scripts/common/global/scr_{flags,collectableids,globaldefines}.asm
