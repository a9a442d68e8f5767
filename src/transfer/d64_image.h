// Transfer between D64 images of the game's discs 2 and 3 and the savegame data file. An image has 40
// tracks, stored as sectors of 256 bytes, and no error bytes. The pages are two sectors of track 1
// (pagePlaces); the directory and the files of the disc are not read. See docs/formats.md.
#pragma once

namespace stashkeep {

/// Copies the savegame from the disc images named by entry 2 (disc 2) and entry 3 (disc 3) to the
/// data file named by entry 4, which is created or truncated after both images are accepted.
/// `argumentCount` must be 5. Returns 0, or prints a message and returns 1.
[[nodiscard]] int extractFromD64(int argumentCount, const char* const* arguments);

/// Copies the data file named by entry 2 to the disc images named by entry 3 (disc 2) and entry 4
/// (disc 3), rewriting both in place; if the data file is too short, the rest of the pages is
/// unchanged. `argumentCount` must be 5. Returns 0, also after the message that an image cannot be
/// rewritten (the other one still is), or prints a message, writes nothing and returns 1.
[[nodiscard]] int implantIntoD64(int argumentCount, const char* const* arguments);

}  // namespace stashkeep
