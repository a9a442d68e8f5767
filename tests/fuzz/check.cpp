// The check command over any files: six of them, separated by bytes of 1. Two may be included, then come the world
// flags, the game flags, the collectable ids and the data file.
#include "symbols/symbol_tables.h"
#include "test_support.h"

using namespace stashkeep;

/// Takes the lines of `flags` from the start of `text`, where they must be in order.
static void takeDump(const FlagTable& flags, const std::string& heading, const std::string& prefix, std::string& text) {
    EXPECT_EQ(text.substr(0, heading.size()), heading);
    text.erase(0, heading.size());
    for (const auto& [name, flag] : flags) {
        if (!name.starts_with(prefix)) continue;
        const std::string start = name.substr(0, name.find('\0')) + " = ";
        EXPECT_EQ(text.substr(0, start.size()), start) << "must begin the next line of the dump";
        text.erase(0, text.find('\n', start.size()) + 1);
    }
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    static const InFolder folder;
    GTEST_FLAG_SET(break_on_failure, true);
    std::istringstream texts(std::string(data, data + size));
    for (const char* name : {"generated/i", "generated/include", "world", "flags", "ids", "data"}) {
        std::string text;
        std::getline(texts, text, '\1');
        writeFile(name, text);
    }
    gameFlagTable = worldFlagTable = {};
    collectableTable = {};
    std::string output = run({"check", "data", "flags", "ids", "world"});
    if (output.ends_with("exit status 1")) return 0;
    for (const char* disc : {">>>DISC2", ">>>DISC3"}) {
        output.erase(0, output.find(">>gameflags:\n", output.find(disc)));
        takeDump(gameFlagTable, ">>gameflags:\n", "", output);
        takeDump(worldFlagTable, ">>worldflags:\n", "WORLDFLAG_", output);
    }
    EXPECT_EQ(output, "exit status 0") << "must follow the last flag";
    return 0;
}
