#!/usr/bin/env bash
# Builds stashkeep and moves a savegame once round: data file -> floppy discs -> data file ->
# memory image -> data file, on media made here. Ends with what the savegame holds.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install.sh cmake g++ ninja-build cc1541
cmake --preset release >/dev/null
cmake --build --preset release >/dev/null
stashkeep=$PWD/out/release/stashkeep

media=$(mktemp -d)
trap 'rm -rf "$media"' EXIT
cp -r examples/. "$media"
cd "$media"

say() { printf '\n== %s\n' "$*"; }
# Shows a command and runs it; the program's path is left out for the eye.
show() { printf '$ stashkeep %s\n' "$*" && "$stashkeep" "$@" && echo; }
# Compares files that have to be the same to the byte.
same() { cmp "$1" "$2" && echo "$1 and $2 are the same, byte for byte."; }
# The directory of a disc, without colours; of a copy, since the lister opens images for writing.
directory() {
    cp "$1" listed.d64
    cc1541 -4 listed.d64 | sed 's/\x1b\[[0-9]*m//g' | grep '^[0-9]'
    rm listed.d64
}

say "Two floppy discs with a file each, and a memory image of 16 MiB"
head -c 5000 "$stashkeep" >level.prg
for disc in 2 3; do
    cc1541 -4 -n "ZARNIS DISC $disc" -r 18 -f "level $disc" -w level.prg "disc$disc.d64" >/dev/null
    directory "disc$disc.d64" >"directory$disc"
    cp "disc$disc.d64" "before$disc.d64"
done
# The game leaves pointers to its four pages at $0900, $0908, $1100 and $1108.
head -c $((16 << 20)) /dev/zero >game.reu
poke() { printf '%b' "$2" | dd of=game.reu bs=1 seek="$(($1))" conv=notrunc status=none; }
poke 0x0900 '\x00\x00\x20\x00' # disc 2, page 0 at $200000
poke 0x0908 '\x00\x01\x20\x00' # disc 2, page 1 at $200100
poke 0x1100 '\x00\x00\x30\x00' # disc 3, page 0 at $300000
poke 0x1108 '\x00\xff\xff\x00' # disc 3, page 1 at $ffff00, the image's last page
cp game.reu before.reu
wc -c disc2.d64 disc3.d64 game.reu savegame.dat

say "Into the discs, and out again"
show implantd64 savegame.dat disc2.d64 disc3.d64
show extractd64 disc2.d64 disc3.d64 from_discs.dat
same savegame.dat from_discs.dat
for disc in 2 3; do
    directory "disc$disc.d64" | diff "directory$disc" -
    changed=$(cmp -l "before$disc.d64" "disc$disc.d64" | wc -l || true)
    echo "disc$disc.d64: $changed bytes changed, and its directory is as before:"
    cat "directory$disc"
done

say "Into the memory image, and out again"
show implantreu from_discs.dat game.reu
show extractreu game.reu from_reu.dat
same savegame.dat from_reu.dat
echo "game.reu: $(cmp -l before.reu game.reu | wc -l || true) bytes changed, $(wc -c <game.reu) bytes long."

say "What the savegame holds"
show check from_reu.dat scripts/common/global/scr_flags.asm \
    scripts/common/global/scr_collectableids.asm scripts/common/global/scr_globaldefines.asm
