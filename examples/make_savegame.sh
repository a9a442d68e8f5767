#!/usr/bin/env bash
# Writes the example savegame data file: examples/make_savegame.sh FILE
# Edit the values below as you like; the checksums are computed.
set -euo pipefail

bytes=()
for ((i = 0; i < 1024; i++)); do bytes[i]=0; done
start=0 # offset of the current disc's savegame

# put OFFSET VALUE...: stores bytes in the current savegame, from OFFSET on
put() {
    local at=$((start + $1)) value
    shift
    for value in "$@"; do bytes[at++]=$((value)); done
}

# worldFlag FIRST_BIT [VALUE], gameFlag FIRST_BIT [VALUE]: stores VALUE (default 1), from FIRST_BIT on
worldFlag() {
    local bit=$1 value=${2:-1}
    for (( ; value > 0; bit++, value >>= 1)); do
        ((bytes[start + bit / 8] |= (value & 1) << bit % 8, 1))
    done
}
gameFlag() { worldFlag $((256 + $1)) "${2:-1}"; }

# checksum FIRST LAST: stores the XOR of the bytes FIRST to LAST in the byte after LAST
checksum() {
    local sum=0 i
    for ((i = $1; i <= $2; i++)); do ((sum ^= bytes[start + i], 1)); done
    put $(($2 + 1)) $sum
}

# The hero, much the same on both discs. A count byte holds the number of items minus one.
hero() {
    #   slot    0  1  2  3  4  5  6  7
    put 296     2  3 23  1  4 11 15 18 # inventoryItemIds: sword, bow, arrows, potion, fruit, map, lamp, glass
    put 320     0  0 29  2  6  0  0  0 # inventoryItemCounts
    put 344    12  5                   # moneyTens, moneyUnits: 125
    put 346     7                      # lives
    put 347     2                      # inventoryUsing
    put 348    12                      # maxLives
    put 349     8                      # inventoryCount
    put 350     0x21                   # weaponFileId
    put 351     1                      # inventoryCurrentItem
    put 353     0x03                   # changedisc2flags
    put 354     0x05                   # activatedWomen
    put 355     0x80                   # specialFlags
    put 356     0x55                   # validsavegame
    put 476     0x34 0x12              # savegameid
}

# Disc 2: the village and the forest
start=0
hero
put 256    4  4 37 12                  # chestItemIds: fruit, fruit, herb, fire spell
put 276    9  4  1  0                  # chestItemCounts
put 352    3                           # savepointId
gameFlag 0                             # FLAG_INTRO_SEEN
gameFlag 2                             # FLAG_SWORD_FOUND
gameFlag 3 5                           # FLAG_BRIDGE_STATE
gameFlag 8 165                         # FLAG_MILL_GRAIN
gameFlag 16                            # FLAG_BOAT_FOUND
gameFlag 17 2                          # FLAG_HERMIT_MOOD
gameFlag 37 1200                       # FLAG_STEPS_WALKED
worldFlag 0                            # WORLDFLAG_VILLAGE_GATE_OPEN
worldFlag 3                            # WORLDFLAG_VILLAGE_WELL_DRY
worldFlag 8                            # WORLDFLAG_FOREST_TREE_FELLED
worldFlag 9                            # WORLDFLAG_FOREST_CHEST_1_TAKEN
checksum 0 220
checksum 256 356

# Disc 3: the mansion and the mountains, late in the game, with all items that disc 2 does not have
start=512
hero
#   slot     0  1  2  3  4  5  6  7  8  9 10 11 12 13 14 15 16 17 18 19 20 21 22 23
put 256     28 29 30 31 32 33 34 35 36 38 39 40 41 42 43 44 45 255 # chestItemIds: the rest, and two unknown ones
put 276      0  0  0  0 11  0  0 19  4 99  0  2  0  0  0  0  0 255 # chestItemCounts
put 296      2  3 23  1  4 11 16 19  5  6  7  8  9 10 13 14 17 20 21 22 24 25 26 27 # inventoryItemIds
put 349     23                         # inventoryCount
put 352     17                         # savepointId
gameFlag 0                             # FLAG_INTRO_SEEN
gameFlag 16                            # FLAG_BOAT_FOUND
gameFlag 21 3                          # FLAG_MANSION_FLOOR
gameFlag 25                            # FLAG_BUTLER_BRIBED
gameFlag 31 40                         # FLAG_DRAGON_ANGER
gameFlag 37 1734                       # FLAG_STEPS_WALKED
worldFlag 20                           # WORLDFLAG_MANSION_DOOR_OPEN
worldFlag 22                           # WORLDFLAG_MANSION_CLOCK_WOUND
worldFlag 41                           # WORLDFLAG_PASS_SNOW_CLEARED
checksum 0 220
checksum 256 356

octal=$(printf '\\%03o' "${bytes[@]}")
# shellcheck disable=SC2059 # the format is the data
printf "$octal" > "$1"
