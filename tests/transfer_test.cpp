// Savegames between media and data files. Whatever happens, media keep their length, and every byte outside the
// savegame's pages.
#include <gtest/gtest.h>

#include <array>

#include "test_support.h"

namespace stashkeep {
namespace {

#ifdef _WIN32  // where a file's read-only mark holds for everyone
int geteuid() { return 1; }
int seteuid(int) { return 0; }
#endif

std::string d64Refusal(const std::string& path) { return "File:<" + path + "> not a valid Zarnis 40 tracks d64.\n"; }
std::string notFound(const std::string& path) { return "File:<" + path + "> not found or not readable.\n"; }

/// Copies to `medium`, at `offset`, what `data` has of page `page` (0 to 3).
void fillPage(std::string& medium, std::size_t offset, const std::string& data, std::size_t page) {
    const std::string bytes = data.size() > 256 * page ? data.substr(256 * page, 256) : "";
    medium.replace(offset, bytes.size(), bytes);
}

struct D64 : testing::Test, InFolder {
    D64() {
        writeFile("Disc2", disc2);
        writeFile("disc 3", disc3);
    }
    std::string disc2 = noise(0x30000, 2);
    std::string disc3 = noise(0x30000, 3);
};

TEST_F(D64, extractTakesTwoSectorsOfEachDiscAndImplantFillsThemAsFarAsTheDataFileReaches) {
    writeFile("data", noise(5000, 9));
    ASSERT_EQ(run({"extractd64", "Disc2", "disc 3", "data"}), "0");
    EXPECT_EQ(readFile("data"),
              disc2.substr(0, 256) + disc2.substr(0x400, 256) + disc3.substr(0, 256) + disc3.substr(0x400, 256));
    for (const std::size_t size : {1024U, 0U, 600U, 2048U}) {
        if (size != 1024) writeFile("data", noise(size, 9));
        for (std::size_t page = 0; page < 4; ++page) {
            fillPage(page < 2 ? disc2 : disc3, page % 2 * 0x400, readFile("data"), page);
        }
        ASSERT_EQ(run({"implantD64", "data", "Disc2", "disc 3"}), "0");
        EXPECT_TRUE(readFile("Disc2") == disc2 && readFile("disc 3") == disc3) << size;
    }
}

TEST_F(D64, refusalsComeInOrderAndWriteNothing) {
    writeFile("short", noise(174848, 4));
    writeFile("long", noise(0x30000 + 768, 4));
    writeFile("data", "older");
    std::filesystem::create_directory("folder");
    const struct {
        std::string disc2, disc3, data, extractPrints, implantPrints;
    } cases[] = {{"short", "no", "data", notFound("no") + d64Refusal("short"), ""},
                 {"no", "folder", "no", notFound("no") + notFound("folder") + d64Refusal("no"), ""},
                 {"Disc2", "long", "data", d64Refusal("long"), ""},
                 {"Disc2", "disc 3", ".", "File:<.> couldn't be created.\n", "File:<.> couldn't be opened.\n"}};
    for (const auto& c : cases) {
        EXPECT_EQ(run({"extractd64", c.disc2, c.disc3, c.data}), "1" + c.extractPrints);
        EXPECT_EQ(run({"implantd64", c.data, c.disc2, c.disc3}),
                  "1" + (c.implantPrints.empty() ? c.extractPrints : c.implantPrints));
        EXPECT_TRUE(readFile("Disc2") == disc2 && readFile("disc 3") == disc3 && readFile("data") == "older");
    }
}

TEST_F(D64, aDiscThatCannotBeWrittenLeavesTheOtherToBeWritten) {
    writeFile("data", noise(1024, 9));
    std::filesystem::permissions("Disc2", std::filesystem::perms(0444));
    std::filesystem::permissions("disc 3", std::filesystem::perms(0666));
    const auto user = geteuid();
    ASSERT_EQ(seteuid(user == 0 ? 65534 : user), 0);  // without the rights that root has over files
    EXPECT_EQ(run({"implantd64", "data", "Disc2", "disc 3"}), "0File:<Disc2> not creatable.\n");
    ASSERT_EQ(seteuid(user), 0);
    std::filesystem::permissions("Disc2", std::filesystem::perms(0666));  // Windows removes no read-only file
    EXPECT_TRUE(readFile("Disc2") == disc2);
    EXPECT_TRUE(readFile("disc 3").starts_with(readFile("data").substr(512, 256)));
}

struct MemoryImage : testing::Test, InFolder {
    /// An image whose pointers hold `pages`.
    static std::string make(std::size_t size, const std::array<std::uint32_t, 4>& pages) {
        std::string image = noise(size, 7);
        for (std::size_t i = 0; i < 16; ++i) {
            const std::size_t pointer = std::array{0x900U, 0x908U, 0x1100U, 0x1108U}[i / 4];
            image[pointer + i % 4] = static_cast<char>(pages[i / 4] >> 8 * (i % 4));
        }
        return image;
    }
};

TEST_F(MemoryImage, everyKindMovesThePagesThatItPointsAt) {
    const std::array<std::uint32_t, 4> pages{0x3000, 0x2F00, 0x20000, 0x110C};
    const std::string image = make(0x20100, pages);
    std::string extracted;
    for (const std::uint32_t page : pages) extracted += image.substr(page, 256);
    for (const std::string kind : {"REU", "georam", "NeoRam", "ybn", "fbn"}) {
        writeFile("image", image);
        ASSERT_EQ(run({"extract" + kind, "image", "data"}), "0");
        EXPECT_EQ(readFile("data"), extracted);
        writeFile("data", noise(600, 9));
        ASSERT_EQ(run({"implant" + kind, "data", "image"}), "0");
        std::string implanted = image;
        for (std::size_t i = 0; i < 4; ++i) fillPage(implanted, pages[i], noise(600, 9), i);
        EXPECT_TRUE(readFile("image") == implanted);
    }
}

TEST_F(MemoryImage, refusalsComeInOrderAndWriteNothing) {
    const std::string refusal = "> not a valid Zarnis memory image.\n";
    const std::pair<std::string, bool> cases[] = {{"", false},
                                                  {make(0x110C, {}).substr(0, 0x110B), false},
                                                  {make(0x2000, {0x1F00, 0, 0, 0x1F01}), false},
                                                  {make(0x2000, {0, 0, 0xFFFFFF00, 0}), false},
                                                  {make(0x110C, {0, 0x100C, 0x100C, 0}), true}};
    for (const auto& [image, isAccepted] : cases) {
        writeFile("image", image);
        writeFile("data", "older");
        const std::string outcome = isAccepted ? "0" : "1File:<image" + refusal;
        EXPECT_EQ(run({"implantreu", "data", "image"}), outcome);
        EXPECT_EQ(readFile("image") == image, !isAccepted);
        EXPECT_EQ(run({"extractreu", "image", "data"}), outcome);
        EXPECT_EQ(readFile("data") == "older", !isAccepted);
    }
    EXPECT_EQ(run({"implantreu", "data", "no"}), "1" + notFound("no") + "File:<no" + refusal);
    EXPECT_EQ(run({"implantreu", "no data", "image"}), "1" + notFound("no data"));
    EXPECT_EQ(run({"extractreu", "image", "no/no"}), "1File:<no/no> couldn't be created.\n");
}

}  // namespace
}  // namespace stashkeep
