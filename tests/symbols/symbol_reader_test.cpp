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
    for (const auto& [token, integer, row] : tableOfFormats("| token | integer |")) {
        const std::string flags = integer == "fails" ? integer : "`A` 0, " + integer;
        EXPECT_EQ(definitions("flags", ".flags A, " + token), flags) << row;
    }
}

TEST_F(SymbolReader, definesGameFlagsAsTheTableSays) {
    for (const auto& [text, flags, row] : tableOfFormats("| text of FLAGS | flags: first bit, width |")) {
        EXPECT_EQ(definitions("flags", text), flags) << row;
    }
}

TEST_F(SymbolReader, definesWorldFlagsAsTheTableSays) {
    for (const auto& [text, flags, row] : tableOfFormats("| text of an included file | flags: bit |")) {
        EXPECT_EQ(definitions("generated/w", text), flags) << row;
    }
}

TEST_F(SymbolReader, definesIdsAsTheTableSays) {
    for (const auto& [text, ids, row] : tableOfFormats("| text of COLLECTABLES | items: id |")) {
        EXPECT_EQ(definitions("ids", text), ids) << row;
    }
}

TEST_F(SymbolReader, printsTheTokensOfSectionsUpToTheFirstFileThatFails) {
    std::filesystem::create_directory("generated/folder");
    std::filesystem::create_directory("generated\\both");  // as a file, it is there with a slash
    expectSession("symbols/symbol_reader_test.txt");
}
