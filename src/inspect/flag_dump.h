// The flag dump: every flag of one disc's savegame by its name in the game's sources.
#pragma once

#include "inspect/disc_savegame.h"

namespace stashkeep {

/// Prints the value of every flag of gameFlagTable, and of those of worldFlagTable whose names
/// begin with "WORLDFLAG_", each in the order of its table. Bits outside the flag area read as 0,
/// and of a flag wider than 32 bits only the lowest 32 count.
void printFlags(const DiscSavegame& savegame);

}  // namespace stashkeep
