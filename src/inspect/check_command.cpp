// Reads all files before it prints the first savegame.
#include "inspect/check_command.h"

#include "cli/files.h"
#include "cli/print_out.h"
#include "inspect/disc_savegame.h"
#include "inspect/flag_dump.h"
#include "inspect/savegame_report.h"
#include "symbols/symbol_reader.h"

namespace stashkeep {
namespace {

constexpr const char* usageLine = "stashkeep check <savegamedatafilename> : printing savegame contents\n";
constexpr const char* flagsUsageLines =
    "or stashkeep check <savegamedatafilename> <flagsfilename> <worldflagsfilename> <collectablesfilename>: printing "
    "also flags\n"
    "e.g. stashkeep check <savegamedatafilename> \"scripts\\common\\global\\scr_flags.asm\" "
    "\"scripts\\common\\global\\scr_collectableids.asm\" \"scripts\\common\\global\\scr_globaldefines.asm\"\n";

}  // namespace

int checkCommand(int argumentCount, const char* const* arguments) {
    if (argumentCount != 3 && argumentCount != 6) {
        printOut("%s", usageLine);
        return refuseArgumentCount(flagsUsageLines);
    }
    const bool hasSymbolFiles = argumentCount == 6;
    if (hasSymbolFiles) {
        const char* const flagsFileName = arguments[3];
        const char* const collectableIds = arguments[4];
        const char* const asmWorldFlags = arguments[5];
        if (generateSaveGame(flagsFileName, asmWorldFlags, collectableIds) != 0) {
            printOut("problem loading flags files; flagsFileName=<%s>, asmWorldFlags=<%s>, collectableIds=<%s>\n",
                     flagsFileName, asmWorldFlags, collectableIds);
            return 1;
        }
    }
    const char* const dataPath = arguments[2];
    File dataFile = openFile(dataPath, "rb");
    if (!dataFile) {
        printOut("%sfile not readable: <%s>\n", usageLine, dataPath);
        return 1;
    }
    DiscSavegame disc2{};
    DiscSavegame disc3{};
    readBytes(dataFile, &disc2, sizeof disc2);
    readBytes(dataFile, &disc3, sizeof disc3);
    dataFile.reset();  // not kept open while a long report is printed

    printOut(">>>DISC2 SAVEGAME CONTENTS:\n");
    printSavegame(disc2);
    if (hasSymbolFiles) printFlags(disc2);
    printOut("\n>>>DISC3 SAVEGAME CONTENTS:\n");
    printSavegame(disc3);
    if (hasSymbolFiles) printFlags(disc3);
    return 0;
}

}  // namespace stashkeep
