// What a savegame means, the report, the flag dump and the check command.
#include "inspect/disc_savegame.h"
#include "inspect/flag_dump.h"
#include "symbols/symbol_tables.h"
#include "test_support.h"

namespace stashkeep {
namespace {

using std::string_literals::operator""s;

TEST(DiscSavegame, checksumsCoverTheirBytesAndNoOthers) {
    DiscSavegame savegame{};
    EXPECT_TRUE(isPage0Valid(savegame) && isPage1Valid(savegame));
    auto* const bytes = reinterpret_cast<std::uint8_t*>(&savegame);
    for (std::size_t i = 0; i < sizeof savegame; ++i) {
        bytes[i] ^= 0x41;
        EXPECT_EQ(isPage0Valid(savegame), i >= 222) << i;
        EXPECT_EQ(isPage1Valid(savegame), i < 256 || i >= 358) << i;
        bytes[i] ^= 0x41;
    }
}

struct Check : testing::Test, InFolder {};

TEST_F(Check, theReportReadsEveryFieldFromItsPlaceAndZeroWhereTheFileEnds) {
    // Disc 3's bytes differ from disc 2's, and neighbours from each other.
    std::string data(1024, '\0');
    for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<char>(i + i / 512 * 90);
    data[296] = 44;
    data[297] = 45;
    data[320] = '\xFF';
    data[349] = 2;
    writeFile("data", data + "more");
    EXPECT_EQ(run({"check", "data"}), "0" + readFile(TESTS_FOLDER "/expected/report.txt"));
    for (const std::size_t size : {0U, 700U}) {
        writeFile("data", std::string(size, '\0'));
        EXPECT_EQ(run({"check", "data"}), "0" + readFile(TESTS_FOLDER "/expected/empty_report.txt"));
    }
}

TEST_F(Check, theExampleIsPrintedWithTheFlagsOfEachDisc) {
    std::filesystem::copy(TESTS_FOLDER "/../examples", ".", std::filesystem::copy_options::recursive);
    gameFlagTable = worldFlagTable = {};
    const std::string common = "scripts/common/global/scr_";
    EXPECT_EQ(run({"check", "savegame.dat", common + "flags.asm", common + "collectableids.asm",
                   common + "globaldefines.asm"}),
              "0" + readFile(TESTS_FOLDER "/expected/example_check.txt"));
}

TEST(PrintFlags, readsBitsOfTheAreaAndNothingElse) {
    gameFlagTable = {{"bit", {0, 1}},    {"byte", {8, 8}},   {"all", {16, 32}},        {"none", {0, 0}},
                     {"less", {0, -5}},  {"wide", {16, 33}}, {"before", {-256, 9}},    {"widest", {16, INT32_MAX}},
                     {"end", {1023, 2}}, {"AB", {0, 1}},     {"far", {INT32_MAX, 40}}, {"low", {INT32_MIN, 40}},
                     {"Z\0x"s, {0, 1}},  {"A", {1, 1}},      {"past", {1024, 1}}};
    worldFlagTable = {{"WORLDFLAG_", {3, 2}},        {"WORLDFLAG", {0, 1}},        {"worldflag_x", {0, 1}},
                      {"XWORLDFLAG_", {0, 1}},       {"WORLDFLAG_END", {1279, 1}}, {"WORLDFLAG_BEFORE", {-1, 1}},
                      {"WORLDFLAG_PAST", {1280, 1}}, {"WORLDFLAG_SAME", {256, 1}}};
    DiscSavegame savegame{};
    savegame.uninterpretedChecked.fill(0xFF);
    std::fill_n(&savegame.flagBits[34], 5, 0xFF);
    for (const auto& [byte, value] : {std::pair(0, 0x19), {1, 1}, {32, 1}, {33, 0xA5}, {159, 0x80}}) {
        savegame.flagBits[static_cast<std::size_t>(byte)] = static_cast<std::uint8_t>(value);
    }
    EXPECT_EQ(captured([&] { printFlags(savegame); }),
              ">>gameflags:\nA = 0\nAB = 1\nZ = 1\nall = -1\nbefore = 281\nbit = 1\nbyte = 165\nend = 1\nfar = 0\n"
              "less = 0\nlow = 0\nnone = 0\npast = 0\nwide = -1\nwidest = -1\n"
              ">>worldflags:\nWORLDFLAG_ = 3\nWORLDFLAG_BEFORE = 0\nWORLDFLAG_END = 1\nWORLDFLAG_PAST = 0\n"
              "WORLDFLAG_SAME = 1\n");
}

TEST(PrintFlags, printsEveryLineWholeWhateverItsLength) {
    gameFlagTable = worldFlagTable = {};
    std::string expected = ">>gameflags:\n";
    for (std::size_t length = 0; length < 10'000; length += 1 + length / 50) {
        const std::string name(length, 'F');
        gameFlagTable[name] = {0, 1};
        expected += name + " = 0\n";
    }
    EXPECT_EQ(captured([] { printFlags({}); }), expected + ">>worldflags:\n");
}

}  // namespace
}  // namespace stashkeep
