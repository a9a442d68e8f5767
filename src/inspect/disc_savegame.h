// The two pages of a disc's savegame, as the game lays them out in memory and on disc. See docs/formats.md.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace stashkeep {

inline constexpr std::size_t chestSlots = 20;
inline constexpr std::size_t inventorySlots = 24;

/// 512 bytes, page 0 and then page 1, read straight from a file. Fields have the names that the
/// report prints; bytes of unknown meaning are called uninterpreted.
struct DiscSavegame {
    // Page 0
    std::array<std::uint8_t, 160> flagBits;  // 1280 bits; bit i is bit i % 8 of byte i / 8
    std::array<std::uint8_t, 61> uninterpretedChecked;
    std::uint8_t checkSumPage0;  // over all bytes of page 0 before it
    std::array<std::uint8_t, 34> uninterpretedPage0End;
    // Page 1
    std::array<std::uint8_t, chestSlots> chestItemIds;
    std::array<std::uint8_t, chestSlots> chestItemCounts;  // number of items, minus one
    std::array<std::uint8_t, inventorySlots> inventoryItemIds;
    std::array<std::uint8_t, inventorySlots> inventoryItemCounts;  // number of items, minus one
    std::uint8_t moneyTens;
    std::uint8_t moneyUnits;
    std::uint8_t lives;
    std::uint8_t inventoryUsing;
    std::uint8_t maxLives;
    std::uint8_t inventoryCount;  // slots in use, from slot 0
    std::uint8_t weaponFileId;
    std::uint8_t inventoryCurrentItem;
    std::uint8_t savepointId;
    std::uint8_t changedisc2flags;
    std::uint8_t activatedWomen;
    std::uint8_t specialFlags;
    std::uint8_t validsavegame;  // 0x55 in a valid savegame
    std::uint8_t checkSumPage1;  // over all bytes of page 1 before it
    std::array<std::uint8_t, 118> uninterpretedUnchecked;
    std::array<std::uint8_t, 2> savegameid;  // little-endian
    std::array<std::uint8_t, 34> uninterpretedPage1End;
};
static_assert(sizeof(DiscSavegame) == 512);
static_assert(offsetof(DiscSavegame, checkSumPage0) == 221);
static_assert(offsetof(DiscSavegame, chestItemIds) == 256);
static_assert(offsetof(DiscSavegame, checkSumPage1) == 357);
static_assert(offsetof(DiscSavegame, savegameid) == 476);

inline constexpr int flagBitCount = 8 * sizeof(DiscSavegame::flagBits);

/// XOR of all bytes, starting from 0. A page is valid if this, over the bytes that its checksum
/// covers, equals the stored checksum.
[[nodiscard]] std::uint8_t xorChecksum(std::span<const std::uint8_t> bytes);

[[nodiscard]] bool isPage0Valid(const DiscSavegame& savegame);
[[nodiscard]] bool isPage1Valid(const DiscSavegame& savegame);

/// 0 to 2805.
[[nodiscard]] int money(const DiscSavegame& savegame);

/// 0 to 65535.
[[nodiscard]] int savegameId(const DiscSavegame& savegame);

/// Bit `bit` of the flag area, 0 or 1; bits outside the area (0 to 1279) read as 0.
[[nodiscard]] std::uint32_t flagBit(const DiscSavegame& savegame, std::int64_t bit);

}  // namespace stashkeep
