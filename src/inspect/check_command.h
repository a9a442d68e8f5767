// The check command: prints a savegame data file in readable form.
#pragma once

namespace stashkeep {

/// Prints the savegames of both discs from the data file named by entry 2; missing bytes read as 0.
/// `argumentCount` must be 3, or 6 to print the flags as well: then entries 3, 4 and 5 name the
/// game's sources of the game flags, the collectable ids and the world flags.
/// Returns 0, or prints a message and returns 1.
[[nodiscard]] int checkCommand(int argumentCount, const char* const* arguments);

}  // namespace stashkeep
