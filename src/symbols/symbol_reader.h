// The reader of the game's assembler sources, which define the names of flags and collectables; see docs/formats.md.
#pragma once

namespace stashkeep {

/// Fills gameFlagTable from the ".flag" and ".flags" directives of `flagsFileName`, worldFlagTable
/// from the files that the asm sections of `asmWorldFlags` include from under generated\, and
/// collectableTable from the definitions of `collectableIds`, in this order. Prints each token of
/// the sections followed by an underscore, without a line break. Returns 0, or 1 at the first file
/// that fails; later files are not opened, and entries made so far stay. A message is printed if the
/// flags file or the collectable-id file fails, but not for `asmWorldFlags` and what it includes.
[[nodiscard]] int generateSaveGame(const char* flagsFileName, const char* asmWorldFlags,
                                   const char* collectableIds) noexcept;

}  // namespace stashkeep
