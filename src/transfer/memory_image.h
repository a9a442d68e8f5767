// Savegames in memory images: REU, GeoRAM, NeoRAM, and the ".ybn" and ".fbn" files of emulators.
// All are handled alike: a table of four pointers, each an unsigned 32-bit little-endian image
// offset, at fixed places in the image (pagePlaces) tells where the pages lie; see docs/formats.md.
#pragma once

namespace stashkeep {

/// Copies the savegame out of the memory image named by entry 2 into the data file named by entry
/// 3, which is created or truncated once all four pages are known to lie inside the image.
/// `argumentCount` has to be 4. Returns 0, or prints a message and returns 1.
[[nodiscard]] int extractFromImage(int argumentCount, const char* const* arguments);

/// Copies the data file named by entry 2 into the memory image named by entry 3, rewriting the
/// image in place; a data file that ends early leaves the rest of the pages as they were.
/// `argumentCount` has to be 4. Returns 0, also after the message that the image cannot be
/// rewritten, or prints a message, writes nothing and returns 1.
[[nodiscard]] int implantIntoImage(int argumentCount, const char* const* arguments);

}  // namespace stashkeep
