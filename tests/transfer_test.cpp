// Savegames between D64 images and data files; fuzz/images.cpp does the same for memory images.
#include "test_support.h"

using namespace stashkeep;

struct D64 : testing::Test, InFolder {};

TEST_F(D64, imagesOfTheRightSizeExchangeTwoSectorsEach) {
    std::string disc2 = noise(0x30000, 2);
    std::string disc3 = noise(0x30000, 3);
    const auto expectDiscs = [&] { EXPECT_TRUE(readFile("Disc2") == disc2 && readFile("ディスク 3") == disc3); };
    writeFile("Disc2", disc2);
    writeFile("ディスク 3", disc3);
    writeFile("data", noise(1025, 6));
    const std::string refusal = "> not a valid Zarnis 40 tracks d64.\n";
    EXPECT_EQ(run({"extractd64", "data", "no", "."}), "1File:<no> not found or not readable.\nFile:<data" + refusal);
    for (const std::size_t size : {174848U, 0x2FFFFU, 0x30001U, 0x30300U}) {  // 35 tracks, ..., with error bytes
        writeFile("other", noise(size, 5));
        EXPECT_EQ(run({"extractd64", "Disc2", "other", "data"}), "1File:<other" + refusal);
        EXPECT_EQ(run({"implantd64", "data", "Disc2", "other"}), "1File:<other" + refusal);
    }
    writeFile("image", std::string(0x110B, '\0'));  // too short by one byte
    EXPECT_EQ(run({"extractreu", "image", "data"}), "1File:<image> not a valid Zarnis memory image.\n");
    writeFile("image", std::string(0x110C, '\0'));
    EXPECT_EQ(run({"extractreu", "image", "."}), "1File:<.> couldn't be created.\n");
    EXPECT_EQ(run({"implantd64", ".", "Disc2", "ディスク 3"}), "1File:<.> couldn't be opened.\n");
    EXPECT_EQ(run({"extractd64", "Disc2", "ディスク 3", "."}), "1File:<.> couldn't be created.\n");
    EXPECT_TRUE(readFile("data") == noise(1025, 6));
    EXPECT_EQ(run({"extractd64", "Disc2", "ディスク 3", "data"}), "0");
    EXPECT_TRUE(readFile("data") ==
                disc2.substr(0, 256) + disc2.substr(0x400, 256) + disc3.substr(0, 256) + disc3.substr(0x400, 256));

    const std::string data = noise(2048, 9);
    writeFile("data", data.substr(0, 600));
    EXPECT_EQ(run({"implantd64", "data", "Disc2", "ディスク 3"}), "0");
    disc2.replace(0, 256, data.substr(0, 256)).replace(0x400, 256, data.substr(256, 256));
    disc3.replace(0, 88, data.substr(512, 88));
    expectDiscs();
    writeFile("data", data);
    std::filesystem::permissions("Disc2", std::filesystem::perms::owner_read);  // which does not stop root
    const bool isRefused = run({"implantd64", "data", "Disc2", "ディスク 3"}) == "0File:<Disc2> not creatable.\n";
    EXPECT_EQ(isRefused, !std::ofstream("Disc2", std::ios::app).is_open());
    disc3.replace(0, 256, data.substr(512, 256)).replace(0x400, 256, data.substr(768, 256));
    expectDiscs();
    std::filesystem::permissions("Disc2", std::filesystem::perms::owner_all);
}
