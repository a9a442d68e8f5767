// Extract from and implant into any memory image. The input is the image's size in pages, its four pointers and its
// contents; the data file is the same contents backwards.
#include <cstring>

#include "test_support.h"

using namespace stashkeep;

static constexpr std::size_t pointerOffsets[] = {0x900, 0x908, 0x1100, 0x1108};

/// Calls `copy` with the offset of each page of `image`; false if the image is refused on the way.
static bool forEachPage(const std::string& image, const std::function<void(std::size_t)>& copy) {
    for (const std::size_t pointerOffset : pointerOffsets) {
        if (image.size() < 0x110C) return false;
        std::uint32_t page = 0;
        std::memcpy(&page, &image[pointerOffset], 4);
        if (std::size_t{page} + 256 > image.size()) return false;
        copy(page);
    }
    return true;
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    static const InFolder folder;
    if (size < 17) return -1;
    const std::string dataFile(std::reverse_iterator(data + size), std::reverse_iterator(data + 17));
    std::string image(data + 17, data + size);
    image.resize(std::size_t{256} * data[0] + 12, 'x');  // 17 pages and 12 bytes is the least valid size
    for (std::size_t i = 0; i < 4 && data[0] >= 17; ++i) std::memcpy(&image[pointerOffsets[i]], data + 1 + 4 * i, 4);
    const std::string refusal = "1File:<image> not a valid Zarnis memory image.\n";
    writeFile("image", image);
    writeFile("data", "older");
    std::string pages;
    const bool isExtracted = forEachPage(image, [&](std::size_t page) { pages += image.substr(page, 256); });
    if (run({"extractreu", "image", "data"}) != (isExtracted ? "0" : refusal)) std::abort();
    if (readFile("data") != (isExtracted ? pages : "older") || readFile("image") != image) std::abort();
    writeFile("data", dataFile);
    std::string implanted = image;
    std::string rest = dataFile;
    const bool isImplanted = forEachPage(implanted, [&](std::size_t page) {
        implanted.replace(page, std::min<std::size_t>(rest.size(), 256), rest, 0, 256);
        rest.erase(0, 256);
    });
    if (run({"implantreu", "data", "image"}) != (isImplanted ? "0" : refusal)) std::abort();
    if (readFile("image") != (isImplanted ? implanted : image) || readFile("data") != dataFile) std::abort();
    return 0;
}
