// Reading the game's assembler sources for the names of what a savegame holds; docs/formats.md has all that counts in
// them.
#pragma once

namespace stashkeep {

/// Fills gameFlagTable from the ".flag" and ".flags" directives of `flagsFileName`, worldFlagTable
/// from the files that the asm sections of `asmWorldFlags` include from under generated\, and
/// collectableTable from the definitions of `collectableIds`, in this order. Prints each token of
/// the sections followed by an underscore, without a line end. Returns 0, or 1 at the first file that
/// fails: the flags and collectable-id files then print a message of their own, `asmWorldFlags` and
/// what it includes do not; the later files are not opened, and entries made so far stay. Throws
/// nothing.
[[nodiscard]] int generateSaveGame(const char* flagsFileName, const char* asmWorldFlags, const char* collectableIds);

}  // namespace stashkeep
