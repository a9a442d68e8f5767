// What check prints for the examples and for data files of any length.
#include "test_support.h"

using namespace stashkeep;

struct CheckCommand : testing::Test, InFolder {};

TEST_F(CheckCommand, printsTheExampleWithAllFlags) {
    std::filesystem::current_path(PROJECT_FOLDER "/examples");
    expectSession("expected/check.txt");
}

TEST_F(CheckCommand, missingBytesReadAsZeroAndFurtherOnesAreIgnored) {
    const std::string data = readFile(PROJECT_FOLDER "/examples/savegame.dat");
    for (const std::size_t size : {0U, 500U, 700U, 1024U}) {
        writeFile("short", data.substr(0, size));
        writeFile("long", data.substr(0, size) + std::string(1024 - size, '\0') + "more");
        EXPECT_EQ(run({"check", "short"}), run({"check", "long"})) << size << " bytes";
    }
    EXPECT_EQ(run({"check", "short"}).find(">>gameflags"), std::string::npos) << "without sources, there are no flags";
}
