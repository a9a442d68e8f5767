// The command table, from which the usage text is printed, and the lookup of a command word.
#include "cli/command_line.h"

#include <algorithm>
#include <array>
#include <string>

#include "cli/print_out.h"
#include "inspect/check_command.h"
#include "transfer/d64_image.h"
#include "transfer/memory_image.h"

namespace stashkeep {
namespace {

struct Command {
    const char* word;
    const char* usage;  // what follows the word in the usage text; null if the command has no line there
    int (*operation)(int argumentCount, const char* const* arguments);
};

constexpr auto commands = std::to_array<Command>({
    {"extractd64", "<disc2.d64> <disc3.d64> <outputfilename> : extracts savegame from d64s into a file",
     extractFromD64},
    {"implantd64", "<inputfilename> <disc2.d64> <disc3.d64> : implants extracted savegame into d64s", implantIntoD64},
    {"extractreu", "<game.bin> <outputfilename> : extracts savegame from reu file into a file", extractFromImage},
    {"implantreu", "<inputfilename> <game.bin> : implants extracted savegame into reu file", implantIntoImage},
    {"extractgeoram", "<game.bin> <outputfilename> : extracts savegame from georam file into a file", extractFromImage},
    {"implantgeoram", "<inputfilename> <game.bin> : implants extracted savegame into georam file", implantIntoImage},
    {"extractneoram", "<game.bin> <outputfilename> : extracts savegame from neoram file into a file", extractFromImage},
    {"implantneoram", "<inputfilename> <game.bin> : implants extracted savegame into neoram file", implantIntoImage},
    {"extractybn", "<game.ybn> <outputfilename> : extracts savegame from yapesdl file into a file", extractFromImage},
    {"implantybn", "<inputfilename> <game.ybn> : implants extracted savegame into yapesdl file", implantIntoImage},
    {"extractfbn", "<game.fbn> <outputfilename> : extracts savegame from frodo file into a file", extractFromImage},
    {"implantfbn", "<inputfilename> <game.fbn> : implants extracted savegame into frodo file", implantIntoImage},
    {"check", nullptr, checkCommand},
});

/// ASCII only, so that the result does not depend on a locale.
char toLowerCase(char byte) { return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte; }

void printUsageText() {
    printOut("Zarnis stashkeep v1.0\n");
    printOut("usage:\n");
    for (const Command& command : commands) {
        if (command.usage != nullptr) printOut("stashkeep %s %s\n", command.word, command.usage);
    }
}

}  // namespace

int runCommandLine(int argumentCount, const char* const* arguments) {
    if (argumentCount < 3) {
        printUsageText();
        return 0;
    }
    printOut("Be aware that this tool can have conflicting effects on different Zarnis builds!");
    std::string word = arguments[1];
    std::transform(word.begin(), word.end(), word.begin(), toLowerCase);
    for (const Command& command : commands) {
        if (word == command.word) return command.operation(argumentCount, arguments);
    }
    printOut("unknown command:%s\n", word.c_str());
    return 0;
}

}  // namespace stashkeep
