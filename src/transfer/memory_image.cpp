// The page offsets come from the image, which may be any file: each is checked before it is used.
#include "transfer/memory_image.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "cli/files.h"
#include "cli/print_out.h"
#include "transfer/savegame_data_file.h"

namespace stashkeep {
namespace {

constexpr std::size_t pointerSize = 4;  // bytes
constexpr std::size_t leastImageSize = pagePlaces.back().pointerOffset + pointerSize;
static_assert(leastImageSize == 0x110C);

std::uint32_t readPointer(const std::uint8_t* bytes) {
    std::uint32_t value = 0;
    for (std::size_t i = pointerSize; i-- > 0;) value = value << 8 | bytes[i];
    return value;
}

/// The offset of the page at `place`; empty if the image is too short for the pointers, or if the
/// page is not wholly inside the image.
std::optional<std::size_t> findPage(const ByteVector& image, const PagePlace& place) {
    if (image.size() < leastImageSize) return std::nullopt;
    const std::size_t offset = readPointer(&image[place.pointerOffset]);
    if (offset > image.size() - pageSize) return std::nullopt;
    return offset;
}

int refuseImage(const char* path) {
    printOut("File:<%s> not a valid Zarnis memory image.\n", path);
    return 1;
}

}  // namespace

int extractFromImage(int argumentCount, const char* const* arguments) {
    if (argumentCount != 4) {
        return refuseArgumentCount(
            "stashkeep extractreu <game.reu> <outputfilename> : extracts savegame from reu file into a file\n");
    }
    const char* const imagePath = arguments[2];
    const ByteVector image = loadFile(imagePath);
    SavegameDataFile dataFile;
    for (std::size_t i = 0; i < pageCount; ++i) {
        const std::optional<std::size_t> offset = findPage(image, pagePlaces[i]);
        if (!offset) return refuseImage(imagePath);
        std::copy_n(&image[*offset], pageSize, dataFile.pages[i].begin());
    }
    return writeSavegameDataFile(arguments[3], dataFile);
}

int implantIntoImage(int argumentCount, const char* const* arguments) {
    if (argumentCount != 4) {
        return refuseArgumentCount(
            "stashkeep implantreu <inputfilename> <game.reu> : implants extracted savegame into reu file\n");
    }
    const char* const dataPath = arguments[2];
    const char* const imagePath = arguments[3];
    ByteVector image = loadFile(imagePath);
    File dataFile = openFile(dataPath, "rb");
    if (!dataFile) {
        printOut("File:<%s> not found or not readable.\n", dataPath);
        return 1;
    }
    for (const PagePlace& place : pagePlaces) {
        // One by one, since a page may overwrite the pointers of later ones.
        const std::optional<std::size_t> offset = findPage(image, place);
        if (!offset) return refuseImage(imagePath);
        readBytes(dataFile, &image[*offset], pageSize);
    }
    dataFile.reset();  // closed first, so that no file is open twice if it is also the image
    rewriteFile(imagePath, image);
    return 0;
}

}  // namespace stashkeep
