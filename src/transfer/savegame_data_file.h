// The savegame data file: the small host file in which a savegame travels between the game's media.
// Four pages of 256 bytes and nothing else: no header, no checksum of its own.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace stashkeep {

inline constexpr std::size_t pageSize = 256;  // bytes; also that of a disc's sector
inline constexpr std::size_t pageCount = 4;

/// 256 bytes of a disc's savegame.
using SavegamePage = std::array<std::uint8_t, pageSize>;

/// Where the game keeps one page of its savegame.
struct PagePlace {
    int disc;                   // 2 or 3
    std::size_t d64Offset;      // of the page itself in that disc's D64 image
    std::size_t pointerOffset;  // in a memory image, of the pointer to the page
};

/// The pages in the order of the data file, which is their order everywhere.
inline constexpr std::array<PagePlace, pageCount> pagePlaces{{
    {2, 0x0000, 0x0900},  // page 0: track 1, sector 0
    {2, 0x0400, 0x0908},  // page 1: track 1, sector 4
    {3, 0x0000, 0x1100},
    {3, 0x0400, 0x1108},
}};

struct SavegameDataFile {
    std::array<SavegamePage, pageCount> pages;
};
static_assert(sizeof(SavegameDataFile) == 1024);

/// Creates the data file at `path`, or truncates an existing one, and writes the four pages, each
/// with one write. Returns 0, also when a write fails; where the file cannot be created, prints
/// "File:<path> couldn't be created." and returns 1.
[[nodiscard]] int writeSavegameDataFile(const char* path, const SavegameDataFile& dataFile);

}  // namespace stashkeep
