// The report: a disc's savegame in readable form.
#pragma once

#include "inspect/disc_savegame.h"

namespace stashkeep {

/// Prints the fields of `savegame`, its checksums and whether they are valid, and all slots of the
/// inventory and the chest with the names of their items.
void printSavegame(const DiscSavegame& savegame);

}  // namespace stashkeep
