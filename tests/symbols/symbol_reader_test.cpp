// What the game's sources define, by the tables of docs/formats.md; what is printed meanwhile, and which of them fail.
#include "symbols/symbol_reader.h"

#include "symbols/symbol_tables.h"
#include "test_support.h"

using namespace stashkeep;

struct SymbolReader : testing::Test, InFolder {
    SymbolReader() {
        for (const char* path : {"flags", "ids", "generated/w"}) writeFile(path, "");
        writeFile("world", "#AsmSectionBegin include w");
    }
    /// What is defined if the file at `path` has this text, as the tables show it.
    static std::string definitions(const std::string& path, const std::string& text) {
        gameFlagTable = worldFlagTable = {};
        collectableTable = {};
        writeFile(path, text);
        int result = 0;
        captured([&] { result = generateSaveGame("flags", "world", "ids"); });
        if (result != 0) return "fails";
        std::string list;
        for (const auto& [name, flag] : gameFlagTable) {
            list += "; `" + name + "` " + std::to_string(flag.firstBit) + ", " + std::to_string(flag.bitCount);
        }
        for (const auto& [name, flag] : worldFlagTable) list += "; `" + name + "` " + std::to_string(flag.firstBit);
        for (const auto& [name, id] : collectableTable) list += "; `" + name + "` " + std::to_string(id);
        return list.empty() ? "none" : list.substr(2);
    }
};

TEST_F(SymbolReader, theWidthOfFlagsMustBeAnIntegerAsInTheTable) {
    for (const auto& [token, integer] : tableOfFormats("| token | integer |")) {
        EXPECT_EQ(definitions("flags", ".flags A, " + token), integer == "fails" ? integer : "`A` 0, " + integer)
            << token;
    }
}

TEST_F(SymbolReader, definesGameFlagsAsTheTableSays) {
    for (const auto& [text, flags] : tableOfFormats("| text of FLAGS | flags, each with its first bit and width |")) {
        EXPECT_EQ(definitions("flags", text), flags) << text;
    }
}

TEST_F(SymbolReader, definesWorldFlagsAsTheTableSays) {
    for (const auto& [text, flags] : tableOfFormats("| text of an included file | flags, each with its bit |")) {
        EXPECT_EQ(definitions("generated/w", text), flags) << text;
    }
}

TEST_F(SymbolReader, definesIdsAsTheTableSays) {
    for (const auto& [text, ids] : tableOfFormats("| text of COLLECTABLES | items, each with its id |")) {
        EXPECT_EQ(definitions("ids", text), ids) << text;
    }
}

TEST_F(SymbolReader, printsTheTokensOfSectionsUpToTheFirstFileThatFails) {
    std::filesystem::create_directory("generated/folder");
    std::filesystem::create_directory("generated\\both");  // as a file, it is there with a slash
    expectSession("symbols/symbol_reader_test.txt");
}
