// Savegames between memory images and data files.
#include <cstdint>

#include "test_support.h"

using namespace stashkeep;

/// An image of 0x13001 dots, with pointers to its pages.
static std::string imageWithPointers(const std::array<std::uint32_t, 4>& offsets) {
    constexpr std::array<std::size_t, 4> places{0x900, 0x908, 0x1100, 0x1108};
    std::string image(0x13001, '.');
    for (std::size_t i = 0; i < 16; ++i) {
        image[places[i / 4] + i % 4] = static_cast<char>(offsets[i / 4] >> 8 * (i % 4));
    }
    return image;
}

/// The same with four pages, the last of which is at the end.
static std::string imageWithPages(const std::array<std::string, 4>& pages) {
    std::string image = imageWithPointers({0x2134, 0x12000, 0x2034, 0x12f01});
    image.replace(0x2134, 256, pages[0]).replace(0x12000, 256, pages[1]);
    return image.replace(0x2034, 256, pages[2]).replace(0x12f01, 256, pages[3]);
}

static const std::string refusal = "File:<image> not a valid Zarnis memory image.\nexit status 1";

struct MemoryImage : testing::Test, InFolder {
    MemoryImage() {
        writeFile("image", image);
        writeFile("data", data);
    }
    const std::string image = imageWithPages({page('a'), page('b'), page('c'), page('d')});
    const std::string data = page('\n') + page('\r') + page('\x1a') + page('D') + "ignored";
};

TEST_F(MemoryImage, extractCopiesThePagesToWhichThePointersPoint) {
    EXPECT_EQ(run({"extractreu", "image", "data"}), "exit status 0");
    EXPECT_EQ(difference("data", page('a') + page('b') + page('c') + page('d')), "");
}

TEST_F(MemoryImage, implantChangesOnlyThePages) {
    EXPECT_EQ(run({"implantreu", "data", "image"}), "exit status 0");
    EXPECT_EQ(difference("image", imageWithPages({page('\n'), page('\r'), page('\x1a'), page('D')})), "");
}

TEST_F(MemoryImage, refusesAPointerThatPointsOutside) {
    for (const std::uint32_t outside : {0x12f02U, 0x13001U, 0x80002034U, 0xffffff00U, 0xffffffffU}) {
        for (std::size_t i = 0; i < 4; ++i) {
            std::array<std::uint32_t, 4> offsets{0x2000, 0x2100, 0x2200, 0x2300};
            offsets[i] = outside;
            writeFile("image", imageWithPointers(offsets));
            ASSERT_EQ(run({"extractreu", "image", "data"}), refusal) << "pointer " << i << ": " << std::hex << outside;
            ASSERT_EQ(run({"implantreu", "data", "image"}), refusal) << "pointer " << i << ": " << std::hex << outside;
            ASSERT_EQ(difference("image", imageWithPointers(offsets)) + difference("data", data), "");
        }
    }
}

TEST_F(MemoryImage, implantReadsAPointerAfterThePagesBeforeItAreWritten) {
    const std::string old = imageWithPointers({0x10c0, 0x2000, 0xffffffff, 0xffffffff});
    for (const std::uint32_t last : {0x3000U, 0x12f02U}) {
        const std::string implanted = imageWithPointers({0x10c0, 0x2000, 0x2100, last});
        writeFile("image", old);
        writeFile("data", implanted.substr(0x10c0, 256) + std::string(768, '.'));  // with the pointers of disc 3
        EXPECT_EQ(run({"implantreu", "data", "image"}), last == 0x3000 ? "exit status 0" : refusal);
        EXPECT_EQ(difference("image", last == 0x3000 ? implanted : old), "");
    }
}

TEST_F(MemoryImage, refusesShortImagesAndFilesThatCannotBeOpened) {
    for (const std::size_t size : {0U, 255U, 2304U, 4363U, 4364U}) {
        writeFile(std::to_string(size), imageWithPointers({0, 0x100, 0x200, 0x300}).substr(0, size));
    }
    expectSession("transfer/memory_image_test.txt");
    EXPECT_EQ(difference("image", image) + difference("data", data), "");
}
