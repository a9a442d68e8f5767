// Extract from and implant into any memory image. The input is its size in pages, its four pointers and its contents.
#include "test_support.h"

using namespace stashkeep;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    static const InFolder folder;
    GTEST_FLAG_SET(break_on_failure, true);
    if (size < 17) return -1;
    std::string image(data + 17, data + size);
    image.resize(std::size_t{256} * data[0] + 12, 'x');  // 17 pages and 12 bytes is the least valid size
    constexpr std::size_t places[] = {0x900, 0x908, 0x1100, 0x1108};
    std::uint32_t pages[4] = {};
    for (std::size_t i = 0; i < 16 && data[0] >= 17; ++i) {
        pages[i / 4] |= std::uint32_t{data[1 + i]} << 8 * (i % 4);
        image[places[i / 4] + i % 4] = static_cast<char>(data[1 + i]);
    }
    writeFile("image", image);
    writeFile("data", "older");
    const bool isExtracted = run({"extractreu", "image", "data"}) == "exit status 0";
    EXPECT_EQ(difference("image", image) + (isExtracted ? "" : difference("data", "older")), "") << "after extract";

    const std::string saved = page('A') + page('B') + page('C') + page('D');
    writeFile("data", saved);
    const bool isImplanted = run({"implantreu", "data", "image"}) == "exit status 0";
    if (!isImplanted) EXPECT_EQ(difference("image", image), "") << "after it was refused";
    std::string implanted = readFile("image");
    EXPECT_EQ(implanted.size(), image.size());
    std::sort(std::begin(pages), std::end(pages));
    if (!isImplanted || pages[0] < 0x110c) return 0;  // a page on the pointers moves others

    EXPECT_EQ(run({"extractreu", "image", "again"}), "exit status 0");
    for (const std::uint32_t offset : pages) {
        image.replace(offset, 256, page('-'));
        implanted.replace(offset, 256, page('-'));
    }
    writeFile("image", implanted);
    EXPECT_EQ(difference("image", image), "") << "outside the pages";
    const auto overlaps = [](std::uint32_t first, std::uint32_t second) { return second - first < 256; };
    if (std::adjacent_find(std::begin(pages), std::end(pages), overlaps) != std::end(pages)) return 0;
    EXPECT_EQ(difference("again", saved), "") << "after implant and extract";
    return 0;
}
