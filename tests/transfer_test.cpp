// Savegames between media and data files. Whatever happens, media keep their length, and every byte
// outside the savegame's pages.
#include <array>

#include "test_support.h"

namespace stashkeep::tests {
namespace {

constexpr std::size_t d64Size = 0x30000;

std::string d64Refusal(const std::string& path) { return "File:<" + path + "> not a valid Zarnis 40 tracks d64.\n"; }
std::string imageRefusal(const std::string& path) { return "File:<" + path + "> not a valid Zarnis memory image.\n"; }
std::string notFound(const std::string& path) { return "File:<" + path + "> not found or not readable.\n"; }

/// A memory image whose pointers hold `pages`.
std::string memoryImage(std::size_t size, const std::array<std::uint32_t, 4>& pages) {
    std::string image = noise(size, 7);
    for (std::size_t i = 0; i < pages.size(); ++i) {
        for (std::size_t k = 0; k < 4; ++k) {
            image[std::array{0x900U, 0x908U, 0x1100U, 0x1108U}[i] + k] = static_cast<char>(pages[i] >> 8 * k);
        }
    }
    return image;
}

/// `medium` with what `data` has of page `page` (0 to 3) at `offset`.
std::string withPage(std::string medium, std::size_t offset, const std::string& data, std::size_t page) {
    const std::string bytes = data.size() > 256 * page ? data.substr(256 * page, 256) : "";
    return medium.replace(offset, bytes.size(), bytes);
}

class D64 : public InFolder {
protected:
    void SetUp() override {
        InFolder::SetUp();
        writeFile("Disc2", disc2);
        writeFile("disc 3", disc3);
    }
    std::string disc2 = noise(d64Size, 2);
    std::string disc3 = noise(d64Size, 3);
};

TEST_F(D64, extractTakesTheTwoSectorsOfEachDisc) {
    writeFile("data", noise(5000, 9));
    ASSERT_EQ(run({"extractd64", "Disc2", "disc 3", "data"}), (Outcome{0, warning}));
    EXPECT_EQ(readFile("data"),
              disc2.substr(0, 256) + disc2.substr(0x400, 256) + disc3.substr(0, 256) + disc3.substr(0x400, 256));
    ASSERT_EQ(run({"implantd64", "data", "Disc2", "disc 3"}), (Outcome{0, warning}));
    EXPECT_TRUE(readFile("Disc2") == disc2 && readFile("disc 3") == disc3);
}

TEST_F(D64, implantFillsThePagesAsFarAsTheDataFileReaches) {
    for (const std::size_t size : {0, 600, 1024, 2048}) {
        SetUp();
        const std::string data = noise(size, 9);
        writeFile("data", data);
        ASSERT_EQ(run({"implantD64", "data", "Disc2", "disc 3"}), (Outcome{0, warning}));
        EXPECT_TRUE(readFile("Disc2") == withPage(withPage(disc2, 0, data, 0), 0x400, data, 1)) << size;
        EXPECT_TRUE(readFile("disc 3") == withPage(withPage(disc3, 0, data, 2), 0x400, data, 3)) << size;
    }
}

TEST_F(D64, refusalsComeInOrderAndWriteNothing) {
    writeFile("short", noise(174848, 4));
    writeFile("long", noise(d64Size + 768, 4));
    writeFile("data", "older");
    std::filesystem::create_directory("folder");
    const struct {
        std::vector<std::string> files;  // disc 2, disc 3, data file
        std::string extractPrints, implantPrints;
    } cases[] = {
        {{"short", "no"}, notFound("no") + d64Refusal("short"), ""},
        {{"no", "folder"}, notFound("no") + notFound("folder") + d64Refusal("no"), ""},
        {{"Disc2", "long"}, d64Refusal("long"), ""},
        {{"Disc2", "/dev/null"}, d64Refusal("/dev/null"), ""},
        {{"Disc2", "disc 3", "folder"}, "File:<folder> couldn't be created.\n", "File:<folder> couldn't be opened.\n"},
        {{"Disc2", "disc 3", "no/no"}, "File:<no/no> couldn't be created.\n", "File:<no/no> couldn't be opened.\n"},
    };
    for (const auto& c : cases) {
        const std::string data = c.files.size() == 3 ? c.files[2] : "data";
        const std::string& implantPrints = c.implantPrints.empty() ? c.extractPrints : c.implantPrints;
        EXPECT_EQ(run({"extractd64", c.files[0], c.files[1], data}), (Outcome{1, warning + c.extractPrints}));
        EXPECT_EQ(run({"implantd64", data, c.files[0], c.files[1]}), (Outcome{1, warning + implantPrints}));
        EXPECT_TRUE(readFile("Disc2") == disc2 && readFile("disc 3") == disc3);
        EXPECT_EQ(readFile("data"), "older");
    }
}

TEST_F(D64, aDiscThatCannotBeWrittenLeavesTheOtherToBeWritten) {
    writeFile("data", noise(1024, 9));
    std::filesystem::permissions("Disc2", std::filesystem::perms(0444));
    std::filesystem::permissions("disc 3", std::filesystem::perms(0666));
    EXPECT_EQ(runUnprivileged({"implantd64", "data", "Disc2", "disc 3"}),
              (Outcome{0, warning + "File:<Disc2> not creatable.\n"}));
    EXPECT_TRUE(readFile("Disc2") == disc2);
    EXPECT_TRUE(readFile("disc 3").starts_with(noise(1024, 9).substr(512, 256)));
}

class MemoryImage : public InFolder {};

TEST_F(MemoryImage, everyKindMovesThePagesThatItPointsAt) {
    const std::array<std::uint32_t, 4> pages{0x3000, 0x2F00, 0x20000, 0x110C};
    const std::string image = memoryImage(0x20100, pages);
    const std::string data = noise(1024, 9);
    for (const std::string kind : {"REU", "georam", "NeoRam", "ybn", "fbn"}) {
        writeFile("image", image);
        ASSERT_EQ(run({"extract" + kind, "image", "data"}), (Outcome{0, warning}));
        std::string extracted;
        for (const std::uint32_t page : pages) extracted += image.substr(page, 256);
        EXPECT_EQ(readFile("data"), extracted);
        ASSERT_EQ(run({"implant" + kind, "data", "image"}), (Outcome{0, warning}));
        EXPECT_TRUE(readFile("image") == image);

        for (const std::size_t size : {0, 600, 1024, 2048}) {
            writeFile("image", image);
            writeFile("data", noise(size, 9));
            std::string implanted = image;
            for (std::size_t i = 0; i < 4; ++i) implanted = withPage(implanted, pages[i], noise(size, 9), i);
            ASSERT_EQ(run({"implant" + kind, "data", "image"}), (Outcome{0, warning}));
            EXPECT_TRUE(readFile("image") == implanted) << size;
        }
    }
}

TEST_F(MemoryImage, aPageMayMoveThePagesAfterIt) {
    // Page 0 lies over all four pointers' table up to the second, which it sets to 0x2100.
    const std::string image = memoryImage(0x3000, {0x880, 0x2000, 0x2800, 0x2800});
    std::string data = noise(1024, 9);
    data.replace(0x88, 4, std::string("\x00\x21\x00\x00", 4));
    writeFile("image", image);
    writeFile("data", data);
    ASSERT_EQ(run({"implantreu", "data", "image"}), (Outcome{0, warning}));
    const std::string moved = withPage(withPage(image, 0x880, data, 0), 0x2100, data, 1);
    EXPECT_TRUE(readFile("image") == withPage(moved, 0x2800, data, 3)) << "of two pages in one place the later remains";
}

TEST_F(MemoryImage, refusalsComeInOrderAndWriteNothing) {
    const struct {
        std::string image;
        bool isRefused;
    } cases[] = {
        {"", true},
        {memoryImage(0x110C, {0, 0, 0, 0}).substr(0, 0x110B), true},
        {memoryImage(0x110C, {0, 0x100C, 0x100C, 0}), false},
        {memoryImage(0x2000, {0x1F00, 0, 0, 0x1F01}), true},
        {memoryImage(0x2000, {0xFFFFFFFF, 0, 0, 0}), true},
        {memoryImage(0x2000, {0, 0, 0xFFFFFF00, 0}), true},
    };
    for (const auto& c : cases) {
        writeFile("image", c.image);
        writeFile("data", "older");
        const std::string printed = warning + (c.isRefused ? imageRefusal("image") : "");
        EXPECT_EQ(run({"implantreu", "data", "image"}), (Outcome{c.isRefused, printed}));
        EXPECT_EQ(readFile("image") == c.image, c.isRefused);
        EXPECT_EQ(run({"extractreu", "image", "data"}), (Outcome{c.isRefused, printed}));
        EXPECT_EQ(readFile("data") == "older", c.isRefused);
    }
    EXPECT_EQ(run({"implantreu", "no data", "no"}), (Outcome{1, warning + notFound("no") + notFound("no data")}));
    EXPECT_EQ(run({"implantreu", "data", "no"}), (Outcome{1, warning + notFound("no") + imageRefusal("no")}));
    EXPECT_EQ(run({"extractreu", "no", "data"}), (Outcome{1, warning + notFound("no") + imageRefusal("no")}));
    EXPECT_EQ(run({"implantreu", "no data", "image"}), (Outcome{1, warning + notFound("no data")}));
    EXPECT_EQ(run({"extractreu", "image", "no/no"}), (Outcome{1, warning + imageRefusal("image")}));
    writeFile("image", memoryImage(0x110C, {}));
    EXPECT_EQ(run({"extractreu", "image", "no/no"}), (Outcome{1, warning + "File:<no/no> couldn't be created.\n"}));
}

}  // namespace
}  // namespace stashkeep::tests
