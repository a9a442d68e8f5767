// Any memory image and data file. The input is the image's size in pages, its four pointers, and what it holds; the
// data file is the same backwards.
#include <array>
#include <cstdlib>
#include <cstring>

#include "test_support.h"

using namespace stashkeep;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    static const InFolder folder;
    if (size < 17) return -1;
    const std::string dataFile(std::reverse_iterator(data + size), std::reverse_iterator(data + 17));
    std::string image(data + 17, data + size);
    image.resize(std::size_t{256} * data[0] + 13, 'x');
    constexpr std::array<std::size_t, 4> pointers{0x900, 0x908, 0x1100, 0x1108};
    bool isValid = image.size() >= 0x110C;
    for (std::size_t i = 0; i < 4 && isValid; ++i) std::memcpy(&image[pointers[i]], data + 1 + 4 * i, 4);
    // What an implant has to make of it, byte by byte.
    std::string implanted = image;
    std::uint32_t page = 0;
    for (std::size_t i = 0; i < 1024 && isValid; ++i) {
        if (i % 256 == 0) std::memcpy(&page, &implanted[pointers[i / 256]], 4);
        isValid = std::size_t{page} + 256 <= image.size();
        if (isValid && i < dataFile.size()) implanted[page + i % 256] = dataFile[i];
    }
    writeFile("image", image);
    writeFile("data", dataFile);
    if ((run({"implantreu", "data", "image"})[0] == '0') != isValid) std::abort();
    if (readFile("image") != (isValid ? implanted : image)) std::abort();
    writeFile("image", image);
    writeFile("taken", "older");
    const bool isTaken = run({"extractreu", "image", "taken"})[0] == '0';
    if (readFile("image") != image || readFile("taken").size() != (isTaken ? 1024 : 5)) std::abort();
    if (isTaken && (run({"implantreu", "taken", "image"})[0] != '0' || readFile("image") != image)) std::abort();
    return 0;
}
