// The command table, the usage text, and the lookup of a command word.
#include "cli/command_line.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "cli/print_out.h"
#include "inspect/check_command.h"
#include "transfer/d64_image.h"
#include "transfer/memory_image.h"

namespace stashkeep {
namespace {

struct Command {
    std::string_view word;
    int (*operation)(int argumentCount, const char* const* arguments);
};

constexpr std::array commands{
    Command{"extractd64", extractFromD64},
    Command{"implantd64", implantIntoD64},
    Command{"extractreu", extractFromImage},
    Command{"implantreu", implantIntoImage},
    Command{"extractgeoram", extractFromImage},
    Command{"implantgeoram", implantIntoImage},
    Command{"extractneoram", extractFromImage},
    Command{"implantneoram", implantIntoImage},
    Command{"extractybn", extractFromImage},
    Command{"implantybn", implantIntoImage},
    Command{"extractfbn", extractFromImage},
    Command{"implantfbn", implantIntoImage},
    Command{"check", checkCommand},
};

constexpr std::array usageText{
    "Zarnis stashkeep v1.0\n",
    "usage:\n",
    "stashkeep extractd64 <disc2.d64> <disc3.d64> <outputfilename> : extracts savegame from d64s into a file\n",
    "stashkeep implantd64 <inputfilename> <disc2.d64> <disc3.d64> : implants extracted savegame into d64s\n",
    "stashkeep extractreu <game.bin> <outputfilename> : extracts savegame from reu file into a file\n",
    "stashkeep implantreu <inputfilename> <game.bin> : implants extracted savegame into reu file\n",
    "stashkeep extractgeoram <game.bin> <outputfilename> : extracts savegame from georam file into a file\n",
    "stashkeep implantgeoram <inputfilename> <game.bin> : implants extracted savegame into georam file\n",
    "stashkeep extractneoram <game.bin> <outputfilename> : extracts savegame from neoram file into a file\n",
    "stashkeep implantneoram <inputfilename> <game.bin> : implants extracted savegame into neoram file\n",
    "stashkeep extractybn <game.ybn> <outputfilename> : extracts savegame from yapesdl file into a file\n",
    "stashkeep implantybn <inputfilename> <game.ybn> : implants extracted savegame into yapesdl file\n",
    "stashkeep extractfbn <game.fbn> <outputfilename> : extracts savegame from frodo file into a file\n",
    "stashkeep implantfbn <inputfilename> <game.fbn> : implants extracted savegame into frodo file\n",
};

/// ASCII only, so that the result does not depend on a locale.
char toLowerCase(char byte) { return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte; }

}  // namespace

int runCommandLine(int argumentCount, const char* const* arguments) {
    if (argumentCount < 3) {
        for (const char* line : usageText) printOut("%s", line);
        return 0;
    }
    printOut("Be aware that this tool can have conflicting effects on different Zarnis builds!");
    std::string word = arguments[1];
    std::ranges::transform(word, word.begin(), toLowerCase);
    for (const Command& command : commands) {
        if (command.word == word) return command.operation(argumentCount, arguments);
    }
    printOut("unknown command:%s\n", word.c_str());
    return 0;
}

}  // namespace stashkeep
