// The front end, and the files below everything.
#include <sys/stat.h>

#include <array>
#include <cstdio>
#include <thread>

#include "cli/load_file.h"
#include "test_support.h"

namespace stashkeep::tests {
namespace {

const std::string wrongCount = "wrong argument count.\n";
const std::string extractImageUsage =
    "stashkeep extractreu <game.reu> <outputfilename> : extracts savegame from reu file into a file\n";
const std::string implantImageUsage =
    "stashkeep implantreu <inputfilename> <game.reu> : implants extracted savegame into reu file\n";
const std::string checkUsage =
    "stashkeep check <savegamedatafilename> : printing savegame contents\n"
    "or stashkeep check <savegamedatafilename> <flagsfilename> <worldflagsfilename> <collectablesfilename>: "
    "printing also flags\n"
    "e.g. stashkeep check <savegamedatafilename> \"scripts\\common\\global\\scr_flags.asm\" "
    "\"scripts\\common\\global\\scr_collectableids.asm\" \"scripts\\common\\global\\scr_globaldefines.asm\"\n";

TEST(CommandLine, fewerThanTwoArgumentsPrintTheUsageTextAlone) {
    const std::string usage = readFile(EXPECTED_FOLDER "/usage.txt");
    ASSERT_FALSE(usage.empty());
    EXPECT_EQ(run({}), (Outcome{0, usage}));
    EXPECT_EQ(run({"check"}), (Outcome{0, usage}));
}

TEST(CommandLine, everyWordReachesItsOperationInAnyCase) {
    const struct {
        std::vector<std::string> words;
        std::string usage;
        std::vector<std::size_t> rightCounts;  // of arguments behind the word
    } cases[] = {
        {{"extractD64", "EXTRACTD64"}, "stashkeep extractd64 <disc2.d64> <disc3.d64> <outputfilename>\n", {3}},
        {{"implantd64"}, "stashkeep implantd64 <inputfilename> <disc2.d64> <disc3.d64>\n", {3}},
        {{"extractreu", "ExtractGeoRAM", "extractneoram", "extractybn", "extractFBN"}, extractImageUsage, {2}},
        {{"implantreu", "IMPLANTGEORAM", "implantNeoram", "implantybn", "implantfbn"}, implantImageUsage, {2}},
        {{"check", "CHECK"}, checkUsage, {1, 4}},
    };
    for (const auto& c : cases) {
        for (const std::string& word : c.words) {
            for (std::size_t count = 1; count <= 6; ++count) {
                std::vector<std::string> arguments(count + 1, "no such file");
                arguments[0] = word;
                const bool isRight = std::count(c.rightCounts.begin(), c.rightCounts.end(), count) > 0;
                const Outcome outcome = run(arguments);
                EXPECT_EQ(outcome.status, 1) << word << count;
                EXPECT_EQ(outcome.printed == warning + c.usage + wrongCount, !isRight) << outcome.printed;
            }
        }
    }
}

TEST(CommandLine, unknownWordsArePrintedFolded) {
    const struct {
        std::string word;
        std::string printed;
    } cases[] = {
        {"checkx", "checkx"}, {"Foo", "foo"},         {"extract", "extract"}, {"", ""},
        {" check", " check"}, {"%S\xC4[", "%s\xC4["}, {"@Z[`", "@z[`"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(run({c.word, "File"}), (Outcome{0, warning + "unknown command:" + c.printed + "\n"}));
    }
}

struct Loaded {
    std::string bytes;
    std::string printed;
    bool operator==(const Loaded&) const = default;
};

Loaded load(const std::string& path) {
    testing::internal::CaptureStdout();
    const ByteVector bytes = loadFile(path.c_str());
    return {std::string(bytes.begin(), bytes.end()), testing::internal::GetCapturedStdout()};
}

class LoadFile : public InFolder {};

TEST_F(LoadFile, readsWhatIsAFileAndComplainsOfTheRest) {
    writeFile("empty", "");
    writeFile("Case %s \xC3\xA4", std::string("a\0\r\n\x1A\xFF", 6));
    std::filesystem::create_directory("folder");
    writeFile("huge", "");
    std::filesystem::resize_file("huge", 0x80000000);  // sparse
    EXPECT_EQ(load("empty"), (Loaded{"", ""}));
    EXPECT_EQ(load("Case %s \xC3\xA4"), (Loaded{std::string("a\0\r\n\x1A\xFF", 6), ""}));
    for (const std::string path : {"case %s", "folder", "huge", ""}) {
        EXPECT_EQ(load(path), (Loaded{"", "File:<" + path + "> not found or not readable.\n"}));
    }
}

TEST_F(LoadFile, readsAPipeUntilItEnds) {
    for (const std::size_t size : {0, 1, 0x10000, 0x30001}) {
        ASSERT_EQ(mkfifo("pipe", 0600), 0);
        std::thread writer([&] { writeFile("pipe", noise(size, 1)); });
        EXPECT_EQ(load("pipe"), (Loaded{noise(size, 1), ""})) << size;
        writer.join();
        std::filesystem::remove("pipe");
    }
}

TEST(Program, handsItsArgumentsOnAndReturnsTheStatus) {
    const auto runProgram = [](const std::string& arguments) {
        Outcome outcome{0, ""};
        std::FILE* const output = popen((STASHKEEP_PROGRAM " " + arguments + " 2>&1").c_str(), "r");
        for (int byte = std::fgetc(output); byte != EOF; byte = std::fgetc(output)) {
            outcome.printed += static_cast<char>(byte);
        }
        outcome.status = pclose(output) >> 8;
        return outcome;
    };
    EXPECT_EQ(runProgram(""), (Outcome{0, readFile(EXPECTED_FOLDER "/usage.txt")}));
    EXPECT_EQ(runProgram("Foo bar"), (Outcome{0, warning + "unknown command:foo\n"}));
    EXPECT_EQ(runProgram("check \"\" 3"), (Outcome{1, warning + checkUsage + wrongCount}));
}

}  // namespace
}  // namespace stashkeep::tests
