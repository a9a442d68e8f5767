// The savegame data file, which holds a savegame outside the game's media: four pages of 256 bytes,
// without a header or a checksum of its own. See docs/formats.md.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace stashkeep {

inline constexpr std::size_t pageSize = 256;  // bytes; also the size of a sector
inline constexpr std::size_t pageCount = 4;

/// 256 bytes of a disc's savegame.
using SavegamePage = std::array<std::uint8_t, pageSize>;

/// Where one page of the savegame is, in each medium.
struct PagePlace {
    int disc;                   // 2 or 3
    std::size_t d64Offset;      // of the page, in the D64 image of that disc
    std::size_t pointerOffset;  // of the pointer to the page, in a memory image
};

/// The pages in the order of the data file, which is used everywhere.
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
/// with one write. Returns 0, also if a write fails; if the file cannot be created, prints
/// "File:<path> couldn't be created." and returns 1.
[[nodiscard]] int writeSavegameDataFile(const char* path, const SavegameDataFile& dataFile);

}  // namespace stashkeep
