// What a savegame means, the report, the flag dump and the check command.
#include <gtest/gtest.h>

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
    EXPECT_EQ(run({"check", "data"}), "0" + readFile(EXPECTED_FOLDER "/report.txt"));
    for (const std::size_t size : {0U, 700U}) {
        writeFile("data", std::string(size, '\0'));
        EXPECT_EQ(run({"check", "data"}), "0" + readFile(EXPECTED_FOLDER "/empty_report.txt"));
    }
}

TEST_F(Check, refusalsComeInOrder) {
    const std::string usage = "stashkeep check <savegamedatafilename> : printing savegame contents\n";
    const std::string problem =
        "problem loading flags files; flagsFileName=<f>, asmWorldFlags=<w>, collectableIds=<c>\n";
    EXPECT_EQ(run({"check", "."}), "1" + usage + "file not readable: <.>\n");
    EXPECT_EQ(run({"check", "no", "f", "c", "w"}), "1generateSaveGame flags.asm file problem!\n" + problem);
    writeFile("f", "");
    EXPECT_EQ(run({"check", "no", "f", "c", "w"}), "1" + problem);
    writeFile("w", "#AsmSectionBegin\na");
    EXPECT_EQ(run({"check", "no", "f", "c", "w"}),
              "1a_;_generateSaveGame collectableids.asm file problem!\n" + problem);
    writeFile("c", "");
    EXPECT_EQ(run({"check", "no", "f", "c", "w"}), "1a_;_" + usage + "file not readable: <no>\n");
}

TEST_F(Check, theExampleIsReadWithAllItsFlags) {
    std::filesystem::copy(EXAMPLES_FOLDER, ".", std::filesystem::copy_options::recursive);
    for (FlagTable* table : {&gameFlagTable, &worldFlagTable}) table->clear();
    const std::string prefix = "scripts/common/global/scr_";
    EXPECT_EQ(run({"check", "savegame.dat", prefix + "flags.asm", prefix + "collectableids.asm",
                   prefix + "globaldefines.asm"}),
              "0" + readFile(EXPECTED_FOLDER "/example_check.txt"));
}

TEST(PrintFlags, readsBitsOfTheAreaAndNothingElse) {
    constexpr std::int32_t lowest = INT32_MIN;
    constexpr std::int32_t highest = INT32_MAX;
    gameFlagTable = {{"bit", {0, 1}},    {"byte", {8, 8}},   {"all", {16, 32}},      {"none", {0, 0}},
                     {"less", {0, -5}},  {"wide", {16, 33}}, {"before", {-256, 9}},  {"widest", {16, highest}},
                     {"end", {1023, 2}}, {"AB", {0, 1}},     {"far", {highest, 40}}, {"low", {lowest, 40}},
                     {"Z\0x"s, {0, 1}},  {"A", {1, 1}},      {"past", {1024, 1}}};
    worldFlagTable = {{"WORLDFLAG_", {3, 2}},        {"WORLDFLAG", {0, 1}},        {"worldflag_x", {0, 1}},
                      {"XWORLDFLAG_", {0, 1}},       {"WORLDFLAG_END", {1279, 1}}, {"WORLDFLAG_BEFORE", {-1, 1}},
                      {"WORLDFLAG_PAST", {1280, 1}}, {"WORLDFLAG_SAME", {256, 1}}};
    DiscSavegame savegame{};
    savegame.uninterpretedChecked.fill(0xFF);
    savegame.flagBits[0] = 0x19;
    savegame.flagBits[1] = 1;
    savegame.flagBits[32] = 1;
    savegame.flagBits[33] = 0xA5;
    std::fill_n(&savegame.flagBits[34], 5, 0xFF);
    savegame.flagBits[159] = 0x80;
    EXPECT_EQ(captured([&] { printFlags(savegame); }),
              ">>gameflags:\nA = 0\nAB = 1\nZ = 1\nall = -1\nbefore = 281\nbit = 1\nbyte = 165\nend = 1\nfar = 0\n"
              "less = 0\nlow = 0\nnone = 0\npast = 0\nwide = -1\nwidest = -1\n"
              ">>worldflags:\nWORLDFLAG_ = 3\nWORLDFLAG_BEFORE = 0\nWORLDFLAG_END = 1\nWORLDFLAG_PAST = 0\n"
              "WORLDFLAG_SAME = 1\n");
}

}  // namespace
}  // namespace stashkeep
