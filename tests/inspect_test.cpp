// What a savegame means, the report, the flag dump and the check command.
#include <cstring>

#include "inspect/disc_savegame.h"
#include "inspect/flag_dump.h"
#include "symbols/symbol_tables.h"
#include "test_support.h"

namespace stashkeep::tests {
namespace {

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

class Check : public InFolder {};

TEST_F(Check, theReportReadsEveryFieldFromItsPlace) {
    // Disc 3's bytes differ from disc 2's, and neighbours from each other.
    std::string data(1024, '\0');
    for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<char>(i + i / 512 * 90);
    data[296] = 44;
    data[297] = 45;
    data[320] = '\xFF';
    data[349] = 2;
    writeFile("data", data + "more");
    EXPECT_EQ(run({"check", "data"}), (Outcome{0, warning + readFile(EXPECTED_FOLDER "/report.txt")}));
}

TEST_F(Check, whatADataFileLacksIsZero) {
    writeFile("data", "");
    const Outcome empty = run({"check", "data"});
    EXPECT_EQ(empty, (Outcome{0, warning + readFile(EXPECTED_FOLDER "/empty_report.txt")}));
    writeFile("data", std::string(700, '\0'));
    EXPECT_EQ(run({"check", "data"}), empty);
}

TEST_F(Check, refusalsComeInOrder) {
    const std::string unreadable =
        warning + "stashkeep check <savegamedatafilename> : printing savegame contents\nfile not readable: <";
    EXPECT_EQ(run({"check", "no"}), (Outcome{1, unreadable + "no>\n"}));
    EXPECT_EQ(run({"check", "."}), (Outcome{1, unreadable + ".>\n"}));
    const std::string problem =
        "problem loading flags files; flagsFileName=<f>, asmWorldFlags=<w>, collectableIds=<c>\n";
    const std::string flagsProblem = "generateSaveGame flags.asm file problem!\n";
    EXPECT_EQ(run({"check", "no", "f", "c", "w"}), (Outcome{1, warning + flagsProblem + problem}));
    writeFile("f", "");
    EXPECT_EQ(run({"check", "no", "f", "c", "w"}), (Outcome{1, warning + problem}));
    writeFile("w", "#AsmSectionBegin\na");
    const std::string idsProblem = "a_;_generateSaveGame collectableids.asm file problem!\n";
    EXPECT_EQ(run({"check", "no", "f", "c", "w"}), (Outcome{1, warning + idsProblem + problem}));
    writeFile("c", "");
    EXPECT_EQ(run({"check", "no", "f", "c", "w"}), (Outcome{1, warning + "a_;_" + unreadable.substr(80) + "no>\n"}));
}

TEST_F(Check, theExampleIsReadWithAllItsFlags) {
    std::filesystem::copy(EXAMPLES_FOLDER, ".", std::filesystem::copy_options::recursive);
    gameFlagTable.clear();
    worldFlagTable.clear();
    collectableTable.clear();
    const std::string folder = "scripts/common/global/scr_";
    EXPECT_EQ(run({"check", "savegame.dat", folder + "flags.asm", folder + "collectableids.asm",
                   folder + "globaldefines.asm"}),
              (Outcome{0, readFile(EXPECTED_FOLDER "/example_check.txt")}));
    EXPECT_EQ(collectableTable.size(), 15U);
}

TEST(PrintFlags, readsBitsOfTheAreaAndNothingElse) {
    constexpr std::int32_t lowest = INT32_MIN;
    constexpr std::int32_t highest = INT32_MAX;
    gameFlagTable = {{"G_bit", {0, 1}},       {"G_byte", {8, 8}},
                     {"G_all", {16, 32}},     {"G_none", {0, 0}},
                     {"G_less", {0, -5}},     {"G_before", {-256, 9}},
                     {"G_wide", {16, 33}},    {"G", {16, highest}},
                     {"G_end", {1023, 2}},    {"G_far", {highest, 40}},
                     {"G_low", {lowest, 40}}, {"G_AB", {0, 1}},
                     {"G_A", {1, 1}},         {std::string("G\0x", 3), {0, 1}}};
    worldFlagTable = {{"WORLDFLAG_", {3, 2}},        {"WORLDFLAG", {0, 1}},        {"worldflag_x", {0, 1}},
                      {"XWORLDFLAG_", {0, 1}},       {"WORLDFLAG_END", {1279, 1}}, {"WORLDFLAG_BEFORE", {-1, 1}},
                      {"WORLDFLAG_PAST", {1280, 1}}, {"WORLDFLAG_SAME", {256, 1}}};
    DiscSavegame savegame{};
    savegame.flagBits[0] = 0x19;
    savegame.flagBits[1] = 1;
    savegame.flagBits[32] = 1;
    savegame.flagBits[33] = 0xA5;
    for (std::size_t i = 34; i < 39; ++i) savegame.flagBits[i] = 0xFF;
    savegame.flagBits[159] = 0x80;
    std::memset(&savegame.uninterpretedChecked, 0xFF, sizeof savegame.uninterpretedChecked);
    testing::internal::CaptureStdout();
    printFlags(savegame);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              ">>gameflags:\nG = -1\nG = 1\nG_A = 0\nG_AB = 1\nG_all = -1\nG_before = 281\nG_bit = 1\nG_byte = 165\n"
              "G_end = 1\nG_far = 0\nG_less = 0\nG_low = 0\nG_none = 0\nG_wide = -1\n"
              ">>worldflags:\nWORLDFLAG_ = 3\nWORLDFLAG_BEFORE = 0\nWORLDFLAG_END = 1\nWORLDFLAG_PAST = 0\n"
              "WORLDFLAG_SAME = 1\n");
}

}  // namespace
}  // namespace stashkeep::tests
