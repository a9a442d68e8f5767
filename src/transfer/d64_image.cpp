// Only the size of an image is checked, which makes sure that both sectors are inside.
#include "transfer/d64_image.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "cli/files.h"
#include "cli/print_out.h"
#include "transfer/savegame_data_file.h"

namespace stashkeep {
namespace {

constexpr std::size_t sectorCount = 768;  // on 40 tracks
constexpr std::size_t d64Size = sectorCount * pageSize;
static_assert(d64Size == 0x30000);

struct DiscImages {
    ByteVector disc2;
    ByteVector disc3;
};

bool isAccepted(const ByteVector& image, const char* path) {
    if (image.size() == d64Size) return true;
    printOut("File:<%s> not a valid Zarnis 40 tracks d64.\n", path);
    return false;
}

/// Loads both images before it checks them; false after the message about the first one that is not
/// accepted.
bool loadDiscs(const char* disc2Path, const char* disc3Path, DiscImages& discs) {
    discs.disc2 = loadFile(disc2Path);
    discs.disc3 = loadFile(disc3Path);
    return isAccepted(discs.disc2, disc2Path) && isAccepted(discs.disc3, disc3Path);
}

/// The first byte of the page at `place`.
std::uint8_t* findPage(DiscImages& discs, const PagePlace& place) {
    return &(place.disc == 2 ? discs.disc2 : discs.disc3)[place.d64Offset];
}

}  // namespace

int extractFromD64(int argumentCount, const char* const* arguments) {
    if (argumentCount != 5) {
        return refuseArgumentCount("stashkeep extractd64 <disc2.d64> <disc3.d64> <outputfilename>\n");
    }
    DiscImages discs;
    if (!loadDiscs(arguments[2], arguments[3], discs)) return 1;
    SavegameDataFile dataFile;
    for (std::size_t i = 0; i < pageCount; ++i) {
        std::copy_n(findPage(discs, pagePlaces[i]), pageSize, dataFile.pages[i].begin());
    }
    return writeSavegameDataFile(arguments[4], dataFile);
}

int implantIntoD64(int argumentCount, const char* const* arguments) {
    if (argumentCount != 5) {
        return refuseArgumentCount("stashkeep implantd64 <inputfilename> <disc2.d64> <disc3.d64>\n");
    }
    const char* const dataPath = arguments[2];
    const char* const disc2Path = arguments[3];
    const char* const disc3Path = arguments[4];
    DiscImages discs;
    if (!loadDiscs(disc2Path, disc3Path, discs)) return 1;
    File dataFile = openFile(dataPath, "rb");
    if (!dataFile) {
        printOut("File:<%s> couldn't be opened.\n", dataPath);
        return 1;
    }
    for (const PagePlace& place : pagePlaces) readBytes(dataFile, findPage(discs, place), pageSize);
    dataFile.reset();  // closed first, so that no file is open twice if it is also an image
    rewriteFile(disc2Path, discs.disc2);
    rewriteFile(disc3Path, discs.disc3);
    return 0;
}

}  // namespace stashkeep
