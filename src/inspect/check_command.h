// The check command: what a savegame data file holds, in readable form.
#pragma once

namespace stashkeep {

/// Prints the savegames of both discs from the data file named by entry 2; bytes that the file
/// lacks read as 0. `argumentCount` has to be 3, or 6 with the game's symbol files as entries 3
/// (game flags), 4 (collectable ids) and 5 (world flags); then all flags are printed, too.
/// Returns 0, or prints a message and returns 1.
[[nodiscard]] int checkCommand(int argumentCount, const char* const* arguments);

}  // namespace stashkeep
