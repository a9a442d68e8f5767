// Everything that is more than reading a byte: checksums, composed numbers and flag bits.
#include "inspect/disc_savegame.h"

#include <functional>
#include <numeric>

namespace stashkeep {
namespace {

constexpr std::size_t page1Offset = offsetof(DiscSavegame, chestItemIds);

/// The bytes at the offsets [first, last).
std::span<const std::uint8_t> bytesBetween(const DiscSavegame& savegame, std::size_t first, std::size_t last) {
    return std::span(reinterpret_cast<const std::uint8_t*>(&savegame), sizeof savegame).subspan(first, last - first);
}

}  // namespace

std::uint8_t xorChecksum(std::span<const std::uint8_t> bytes) {
    return std::accumulate(bytes.begin(), bytes.end(), std::uint8_t{0}, std::bit_xor<>());
}

bool isPage0Valid(const DiscSavegame& savegame) {
    return xorChecksum(bytesBetween(savegame, 0, offsetof(DiscSavegame, checkSumPage0))) == savegame.checkSumPage0;
}

bool isPage1Valid(const DiscSavegame& savegame) {
    return xorChecksum(bytesBetween(savegame, page1Offset, offsetof(DiscSavegame, checkSumPage1))) ==
           savegame.checkSumPage1;
}

int money(const DiscSavegame& savegame) { return 10 * savegame.moneyTens + savegame.moneyUnits; }

int savegameId(const DiscSavegame& savegame) { return savegame.savegameid[0] | savegame.savegameid[1] << 8; }

std::uint32_t flagBit(const DiscSavegame& savegame, std::int64_t bit) {
    if (bit < 0 || bit >= flagBitCount) return 0;
    const auto index = static_cast<std::size_t>(bit);
    return savegame.flagBits[index / 8] >> index % 8 & 1U;
}

}  // namespace stashkeep
