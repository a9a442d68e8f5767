// Only writing is shared: each command that reads a data file reads the pages straight to where it needs them.
#include "transfer/savegame_data_file.h"

#include "cli/files.h"
#include "cli/print_out.h"

namespace stashkeep {

int writeSavegameDataFile(const char* path, const SavegameDataFile& dataFile) {
    const File file = openFile(path, "wb");
    if (!file) {
        printOut("File:<%s> couldn't be created.\n", path);
        return 1;
    }
    for (const SavegamePage& page : dataFile.pages) writeBytes(file, page.data(), page.size());
    return 0;
}

}  // namespace stashkeep
