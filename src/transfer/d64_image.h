// Savegames on floppy discs: D64 images of the game's discs 2 and 3, with 40 tracks and without
// error bytes, whose sectors of 256 bytes are stored track by track. The pages lie in two sectors
// of track 1 (pagePlaces); no directory or file of the disc is looked at.
#pragma once

namespace stashkeep {

/// Copies the savegame out of the disc images named by entry 2 (disc 2) and entry 3 (disc 3) into
/// the data file named by entry 4, which is created or truncated once both images are accepted.
/// `argumentCount` has to be 5. Returns 0, or prints a message and returns 1.
[[nodiscard]] int extractFromD64(int argumentCount, const char* const* arguments);

/// Copies the data file named by entry 2 into the disc images named by entry 3 (disc 2) and entry 4
/// (disc 3), rewriting both in place; a data file that ends early leaves the rest of the pages as
/// they were. `argumentCount` has to be 5. Returns 0, also after the message that an image cannot
/// be rewritten (the other one still is), or prints a message, writes nothing and returns 1.
[[nodiscard]] int implantIntoD64(int argumentCount, const char* const* arguments);

}  // namespace stashkeep
