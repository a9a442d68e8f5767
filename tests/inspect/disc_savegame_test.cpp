// What the checksums of a disc's savegame cover.
#include "inspect/disc_savegame.h"

#include <bit>

#include "test_support.h"

using namespace stashkeep;

TEST(DiscSavegame, eachChecksumCoversItsPageUpToItself) {
    for (std::size_t offset = 0; offset < sizeof(DiscSavegame); ++offset) {
        std::array<std::uint8_t, sizeof(DiscSavegame)> bytes{};
        bytes[offset] = 1;
        const auto savegame = std::bit_cast<DiscSavegame>(bytes);
        EXPECT_EQ(isPage0Valid(savegame), offset > 221) << "after a change of byte " << offset;
        EXPECT_EQ(isPage1Valid(savegame), offset < 256 || offset > 357) << "after a change of byte " << offset;
    }
}
