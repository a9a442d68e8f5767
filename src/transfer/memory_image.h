// Transfer between memory images (REU, GeoRAM, NeoRAM, and the emulators' ".ybn" and ".fbn" files) and
// the savegame data file. In all of them, four pointers at fixed offsets (pagePlaces) give the image
// offsets of the pages, as unsigned 32-bit little-endian numbers. See docs/formats.md.
#pragma once

namespace stashkeep {

/// Copies the savegame from the memory image named by entry 2 to the data file named by entry 3,
/// which is created or truncated after all four pages are known to lie inside the image.
/// `argumentCount` must be 4. Returns 0, or prints a message and returns 1.
[[nodiscard]] int extractFromImage(int argumentCount, const char* const* arguments);

/// Copies the data file named by entry 2 to the memory image named by entry 3, rewriting the image
/// in place; if the data file is too short, the rest of the pages is unchanged. `argumentCount`
/// must be 4. Returns 0, also after the message that the image cannot be rewritten, or prints a
/// message, writes nothing and returns 1.
[[nodiscard]] int implantIntoImage(int argumentCount, const char* const* arguments);

}  // namespace stashkeep
