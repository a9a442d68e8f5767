// The front end, and the files below everything.

#include "cli/files.h"
#include "test_support.h"

namespace stashkeep {
namespace {

TEST(CommandLine, everyWordReachesItsOperationInAnyCaseWhichRefusesWrongCounts) {
    std::string outcomes;
    for (const std::string word : {"extractD64", "IMPLANTD64", "extractreu", "ExtractGeoRAM", "extractneoram",
                                   "extractybn", "extractFBN", "implantreu", "IMPLANTGEORAM", "implantNeoram",
                                   "implantybn", "implantfbn", "check",      "CHECK",         "checkx",
                                   "Foo",        "",           " check",     "extract",       "%S\xC4@Z[`"}) {
        for (std::size_t count = 0; count <= 6; ++count) {
            std::vector<std::string> arguments(count + 1, "no");
            arguments[0] = word;
            outcomes += word + " " + std::to_string(count) + " " + run(arguments);
        }
    }
    EXPECT_EQ(outcomes, readFile(TESTS_FOLDER "/expected/words.txt"));
}

struct LoadFile : testing::Test, InFolder {};

TEST_F(LoadFile, readsWhatIsAFileAndComplainsOfTheRest) {
    writeFile("empty", "");
    writeFile("Case %s \xC3\xA4", noise(1000, 1));
    std::filesystem::create_directory("folder");
    writeFile("huge", "");
    std::filesystem::resize_file("huge", 0x80000000);  // sparse
    for (const std::string path : {"empty", "Case %s \xC3\xA4", "case %s", "folder", "huge", ""}) {
        const bool isFile = path == "empty" || path[0] == 'C';
        ByteVector bytes;
        EXPECT_EQ(captured([&] { bytes = loadFile(path.c_str()); }),
                  isFile ? "" : "File:<" + path + "> not found or not readable.\n");
        EXPECT_EQ(std::string(bytes.begin(), bytes.end()), path[0] == 'C' ? noise(1000, 1) : "") << path;
    }
    EXPECT_TRUE(run({"check", "no", "huge", "no", "no"}).starts_with("1generateSaveGame flags.asm file problem!\n"));
}

}  // namespace
}  // namespace stashkeep
