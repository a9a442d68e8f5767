#!/bin/sh
# Makes media for trying out the examples, in the current folder, next to savegame.dat. Existing files of these names
# are replaced:
#   disc2.d64, disc3.d64   40-track disc images that hold the savegame of savegame.dat
#   game.reu               a memory image of 4 MiB with the four page pointers, whose pages are all zero
set -eu

[ -r savegame.dat ] || { echo "make_media.sh: no savegame.dat in the current folder" >&2; exit 1; }
rm -f disc2.d64 disc3.d64 game.reu # removed, so that nothing is written through a link

# copyPage PAGE IMAGE SECTOR: a page of the data file into a sector of track 1
copyPage() { dd if=savegame.dat skip="$1" of="$2" seek="$3" bs=256 count=1 conv=notrunc 2>/dev/null; }
head -c 196608 /dev/zero >disc2.d64
copyPage 0 disc2.d64 0
copyPage 1 disc2.d64 4
head -c 196608 /dev/zero >disc3.d64
copyPage 2 disc3.d64 0
copyPage 3 disc3.d64 4

# putPointer OFFSET BYTES: a pointer of game.reu, little-endian
putPointer() { printf '%b' "$2" | dd of=game.reu seek="$(($1 / 4))" bs=4 conv=notrunc 2>/dev/null; }
head -c 4194304 /dev/zero >game.reu
putPointer 0x0900 '\0000\0000\0040\0000' # disc 2, page 0 at 0x200000
putPointer 0x0908 '\0000\0001\0040\0000' # disc 2, page 1 at 0x200100
putPointer 0x1100 '\0000\0000\0060\0000' # disc 3, page 0 at 0x300000
putPointer 0x1108 '\0000\0377\0077\0000' # disc 3, page 1 at 0x3fff00, the last page of the image
