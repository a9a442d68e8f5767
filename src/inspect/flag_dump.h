// The flag dump: every flag of a disc's savegame, by its name in the game's sources.
#pragma once

#include "inspect/disc_savegame.h"

namespace stashkeep {

/// Prints the value of every flag in gameFlagTable, and of those in worldFlagTable whose names begin
/// with "WORLDFLAG_", in the order of the tables. Bits outside the flag area read as 0; of a flag
/// wider than 32 bits, only the lowest 32 count.
void printFlags(const DiscSavegame& savegame);

}  // namespace stashkeep
