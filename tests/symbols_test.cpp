// The tokenizers, and the reading of the game's sources, on the cases in tests/cases/. Each is a line "TEXT => RESULT",
// in which \n, \r, \t, \\ and \xHH stand for bytes.

#include "symbols/symbol_reader.h"
#include "symbols/symbol_tables.h"
#include "symbols/tokenizer.h"
#include "test_support.h"

namespace stashkeep {
namespace {

std::string unescaped(const std::string& line) {
    std::string bytes;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char escaped = line[i] == '\\' ? line[++i] : '\0';
        if (escaped == 'x') {
            bytes += static_cast<char>(std::stoi(line.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else {
            bytes += escaped == 'n' ? '\n' : escaped == 'r' ? '\r' : escaped == 't' ? '\t' : line[i];
        }
    }
    return bytes;
}

/// Compares what `result` makes of each text in a file of cases.
void expectCases(const std::string& name, const std::function<std::string(const std::string&)>& result) {
    std::ifstream file(TESTS_FOLDER "/cases/" + name);
    std::string line;
    std::getline(file, line);
    EXPECT_TRUE(line.starts_with("# "));
    while (std::getline(file, line)) {
        const std::size_t arrow = line.find(" => ");
        EXPECT_EQ(result(unescaped(line.substr(0, arrow))), unescaped(line.substr(arrow + 4))) << line;
    }
}

std::string joined(const TokenList& tokens) {
    std::string text;
    for (const std::string& token : tokens) text += "|" + token;
    return text;
}

TEST(Tokenizer, splitsTextsAndSetsSectionsAside) {
    expectCases("tokens.txt", [](const std::string& text) {
        asmSectionText = "kept";
        EXPECT_EQ(joined(splitAsmLine(text)), joined(splitLine(text))) << text;
        EXPECT_EQ(asmSectionText, "kept") << text;
        return joined(splitLine(text));
    });
    expectCases("sections.txt", [](const std::string& cut) {
        std::string text;
        for (const char c : cut) text += c == '<' ? asmSectionBegin : c == '>' ? asmSectionEnd : std::string(1, c);
        asmSectionText = " ";
        const std::string tokens = joined(splitAsmLine(text));
        return tokens + asmSectionText;
    });
}

struct SymbolReader : testing::Test, InFolder {
    static std::string read(const std::string& flags, const std::string& world, const std::string& ids) {
        writeFile("flags", flags);
        writeFile("world", world);
        writeFile("ids", ids);
        gameFlagTable = worldFlagTable = {};
        collectableTable = {};
        int status = 0;
        const std::string printed = captured([&] { status = generateSaveGame("flags", "world", "ids"); });
        return std::to_string(status) + printed;
    }
};

TEST_F(SymbolReader, fillsItsTables) {
    expectCases("game_flags.txt", [](const std::string& text) {
        std::string result = read(text, "", "");
        for (const auto& [name, flag] : gameFlagTable) {
            result += " " + name + ":" + std::to_string(flag.firstBit) + "+" + std::to_string(flag.bitCount);
        }
        return result;
    });
    std::filesystem::create_directories("generated/a");
    expectCases("world_flags.txt", [](const std::string& text) {
        writeFile("generated/a/w.inc", text);
        EXPECT_EQ(read("", "#AsmSectionBegin\ninclude \"a\\w.inc\"", ""), "0include_a\\w.inc_;_");
        EXPECT_EQ(worldFlagTable["W"].bitCount, 1);
        return std::to_string(worldFlagTable["W"].firstBit);
    });
    expectCases("collectables.txt", [](const std::string& text) {
        std::string result = read("", "", text);
        for (const auto& [name, id] : collectableTable) result += " " + name + ":" + std::to_string(id);
        return result;
    });
}

TEST_F(SymbolReader, includesFilesByTheirPathsAsTheyStandAndThenWithSlashes) {
    std::filesystem::create_directory("generated");
    writeFile("generated/w.inc", "W = 12");
    writeFile("generated\\w.inc", "W = 11");
    EXPECT_EQ(read("", "#AsmSectionBegin\ninclude w.inc", ""), "0include_w.inc_;_");
    EXPECT_EQ(worldFlagTable["W"].firstBit, 11);
    EXPECT_EQ(read("", "include w.inc", ""), "0");
    EXPECT_EQ(read("", "#AsmSectionBegin\nx include w.inc include", ""), "1x_include_w.inc_include_");
    EXPECT_TRUE(worldFlagTable.empty()) << "nothing counts until all included files are read";
    std::filesystem::create_directory("generated\\f");
    writeFile("generated/f", "W = 1");
    EXPECT_EQ(read("", "#AsmSectionBegin\ninclude f", ""), "1include_") << "a folder is no file, and comes first";
}

}  // namespace
}  // namespace stashkeep
