// Which bits make the value of a flag; expected/check.txt has a whole dump.
#include "inspect/flag_dump.h"

#include "symbols/symbol_tables.h"
#include "test_support.h"

using namespace stashkeep;

/// The value that is printed for the only flag, which is in `table`, if all bits of the area but bit 992 are set.
static std::int32_t valueOf(FlagTable& table, Flag flag) {
    DiscSavegame savegame{};
    savegame.flagBits.fill(0xff);
    savegame.flagBits[124] = 0xfe;
    savegame.uninterpretedChecked.fill(0xff);
    gameFlagTable = worldFlagTable = {};
    table["WORLDFLAG_"] = flag;
    const std::string printed = captured([&] { printFlags(savegame); });
    return std::stoi(printed.substr(printed.find(" = ") + 3));
}

TEST(FlagDump, aFlagReadsOnlyBitsOfTheAreaAndAtMost32) {
    const struct {
        std::int32_t firstBit, bitCount, asGameFlag, asWorldFlag;
    } cases[] = {
        {0, 2, 3, 3},
        {0, -1, 0, 0},
        {-1, 3, 7, 6},
        {-257, 3, 6, 0},
        {INT32_MIN, 1, 0, 0},
        {736, 33, -2, -1},
        {992, INT32_MAX, -1, -2},
        {993, 32, INT32_MAX, -1},
        {1278, 3, 0, 3},
        {INT32_MAX, 1, 0, 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(valueOf(gameFlagTable, {c.firstBit, c.bitCount}), c.asGameFlag) << "from bit " << c.firstBit;
        EXPECT_EQ(valueOf(worldFlagTable, {c.firstBit, c.bitCount}), c.asWorldFlag) << "from bit " << c.firstBit;
    }
}
