// The front end, and which files cannot be opened.
#include <map>

#include "cli/files.h"
#include "test_support.h"

using namespace stashkeep;

struct CommandLine : testing::Test, InFolder {};

TEST_F(CommandLine, everyWordReachesItsOperationWhichRefusesWrongCounts) {
    std::map<std::string, std::string> calls{{run({}), "none"}};  // words and numbers of files, by what they print
    for (const std::string word :
         {"extractd64", "EXTRACTD64", "implantd64", "ImplantD64", "extractreu", "extractgeoram", "extractneoram",
          "extractybn", "extractfbn", "ExtractGeoRAM", "implantreu", "implantgeoram", "implantneoram", "implantybn",
          "implantfbn", "IMPLANTneoRAM", "check", "cHECK"}) {
        std::vector<std::string> arguments{word};
        for (const char* count : {"0", "1", "2", "3", "4", "5", "6"}) {
            calls[run(arguments)] += " " + word + ":" + count;
            arguments.push_back("No %s" + std::string(count));
        }
    }
    std::string outcomes;
    for (const auto& [outcome, words] : calls) outcomes.append(words).append("\n").append(outcome);
    expectOutput("command_line.txt", outcomes);
}

TEST_F(CommandLine, foldsOnlyAsciiLettersAndMatchesWholeWords) {
    for (const auto& [word, folded] : {std::pair("checkx", "checkx"),
                                       {"EXTRACT", "extract"},
                                       {"", ""},
                                       {" check", " check"},
                                       {"%S\xC4@AZ[`{", "%s\xC4@az[`{"}}) {
        EXPECT_EQ(run({word, "no"}), "0unknown command:" + std::string(folded) + "\n");
    }
}

TEST_F(CommandLine, refusesFoldersAndHugeFiles) {
    std::filesystem::create_directory("folder");
    writeFile("huge", "");
    std::uintmax_t size = 0x80000000;
    for (const std::string path : {"huge", "huge", "folder", ""}) {
        std::filesystem::resize_file("huge", size++);  // sparse
        EXPECT_EQ(captured([&] { EXPECT_TRUE(loadFile(path.c_str()).empty()); }),
                  "File:<" + path + "> not found or not readable.\n");
        EXPECT_TRUE(run({"check", "no", path, "no", "no"}).starts_with("1generateSaveGame flags.asm file problem!\n"));
        EXPECT_EQ(run({"check", path})[0], path == "huge" ? '0' : '1') << "of a data file, only 1024 bytes are read";
    }
}
