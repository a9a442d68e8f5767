// The report: one disc's savegame in readable form.
#pragma once

#include "inspect/disc_savegame.h"

namespace stashkeep {

/// Prints the fields of `savegame`, its checksums and whether they hold, and every slot of the
/// inventory and the chest with the name of its item.
void printSavegame(const DiscSavegame& savegame);

}  // namespace stashkeep
