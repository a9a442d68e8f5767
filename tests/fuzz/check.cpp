// The whole of check over any files. The input is five of them, separated by bytes of 1.
#include <cstdlib>

#include "symbols/symbol_tables.h"
#include "test_support.h"

using namespace stashkeep;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    static const InFolder folder;
    std::filesystem::create_directory("generated");
    const unsigned char* const end = data + size;
    for (const char* name : {"generated/i", "world", "flags", "ids", "data"}) {
        const unsigned char* const separator = std::find(data, end, 1);
        writeFile(name, std::string(data, separator));
        data = std::min(separator + 1, end);
    }
    for (FlagTable* table : {&gameFlagTable, &worldFlagTable}) table->clear();
    const std::string outcome = run({"check", "data", "flags", "ids", "world"});
    const auto isPrinted = [&](const char* text) { return outcome.find(text) != std::string::npos; };
    const bool isWhole = isPrinted(">>>DISC2 SAVEGAME CONTENTS:\n\n----------\nmoney:<") &&
                         isPrinted(">>worldflags:\n") &&
                         isPrinted("\n>>>DISC3 SAVEGAME CONTENTS:\n\n----------\nmoney:<");
    const bool isRefused = isPrinted("problem loading flags files; flagsFileName=<flags>");
    if (!(outcome[0] == '0' && isWhole) && !(outcome[0] == '1' && isRefused)) std::abort();
    return 0;
}
