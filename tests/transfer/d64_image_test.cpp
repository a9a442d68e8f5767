// Savegames between D64 images and data files; faults.sh tests images that cannot be written.
#include "test_support.h"

using namespace stashkeep;

/// An image of 40 tracks that is filled with one byte, except for the pages of the savegame.
static std::string discImage(char fill, const std::string& page0, const std::string& page1) {
    return std::string(196'608, fill).replace(0, 256, page0).replace(0x400, 256, page1);
}

struct D64Image : testing::Test, InFolder {
    D64Image() {
        writeFile("Disc2", disc2);
        writeFile("ディスク3", disc3);
        writeFile("data", data);
    }
    const std::string disc2 = discImage('2', page('a'), page('b'));
    const std::string disc3 = discImage('3', page('c'), page('d'));
    const std::string data = page('\n') + page('\r') + page('\x1a') + "the first bytes of a page";
};

TEST_F(D64Image, extractCopiesTwoSectorsOfEachDisc) {
    EXPECT_EQ(run({"extractd64", "Disc2", "ディスク3", "data"}), "exit status 0");
    EXPECT_EQ(difference("data", page('a') + page('b') + page('c') + page('d')), "");
}

TEST_F(D64Image, implantChangesTwoSectorsOfEachDiscAsFarAsTheDataFileGoes) {
    EXPECT_EQ(run({"implantd64", "data", "Disc2", "ディスク3"}), "exit status 0");
    EXPECT_EQ(difference("Disc2", discImage('2', page('\n'), page('\r'))), "");
    const std::string page1 = "the first bytes of a page" + std::string(231, 'd');
    EXPECT_EQ(difference("ディスク3", discImage('3', page('\x1a'), page1)), "");
}

TEST_F(D64Image, refusesOtherSizesAndFilesThatCannotBeOpened) {
    for (const std::size_t size : {0U, 174'848U, 196'607U, 196'609U, 197'376U}) {
        writeFile(std::to_string(size), std::string(size, 'x'));
    }
    expectSession("transfer/d64_image_test.txt");
    EXPECT_EQ(difference("Disc2", disc2) + difference("ディスク3", disc3) + difference("data", data), "");
}
