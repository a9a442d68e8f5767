// The tokenizers, and the reading of the game's sources.
#include <gtest/gtest.h>

#include "symbols/symbol_reader.h"
#include "symbols/symbol_tables.h"
#include "symbols/tokenizer.h"
#include "test_support.h"

namespace stashkeep {
namespace {

using std::string_literals::operator""s;
using Texts = std::vector<std::pair<std::string, std::string>>;

std::string joined(const TokenList& tokens) {
    std::string text;
    for (const std::string& token : tokens) text += "|" + token;
    return text;
}

TEST(Tokenizer, textWithoutMarkersSplitsIntoTheSameTokensInBoth) {
    // clang-format off
    const Texts cases{{"", ""}, {" \t\n;;\n#x\n", ""}, {"a", "|a|;"}, {"a b\nc", "|a|b|;|c|;"},
        {"a\r\nb\rc", "|a|;|b|;|c|;"}, {";;a;;\n", "|a|;"}, {",", "|,|;"}, {"a,,b", "|a|,|,|b|;"},
        {"a;,;", "|a|;|,|;"}, {"a=1\t=\v2", "|a=1|=\v2|;"}, {"a\0b \xFF\x80"s, "|a\0b|\xFF\x80|;"s},
        {R"("a b")", "|a b|;"}, {R"(x"y z"w)", "|xy zw|;"}, {R"("" x"")", "|x|;"}, {R"("")", ""},
        {"\"a,b;x#y\nz\"", "|a,b;x#y\nz|;"}, {R"(";")", "|;"}, {R"(a ";")", "|a|;"}, {R"(",")", "|,|;"},
        {R"("a\nb")", "|a\nb|;"}, {R"("a\"b")", "|a\"b|;"}, {R"("a\\"b)", "|a\\b|;"}, {R"("a\tb")", "|a\\tb|;"},
        {"\"a\\\tb\"", "|a\tb|;"}, {R"("a\)", "|a\\|;"}, {"\"a\\\0"s, "|a\\\0|;"s}, {R"(a\nb\")", "|a\\nb\\|;"},
        {"\"a\nb", "|a\nb|;"}, {"ab#c\nd", "|ab|;|d|;"}, {"ab#c#\"d\re", "|ab|;|e|;"}, {"ab#c", "|ab|;"},
        {"a #AsmSect", "|a|;"}, {"#asmsectionbegin\nx", "|x|;"},
        {"\"#AsmSectionBegin\" x", "|#AsmSectionBegin|x|;"}};
    // clang-format on
    for (const auto& [text, tokens] : cases) {
        asmSectionText = "kept";
        EXPECT_EQ(joined(splitLine(text)), tokens) << text;
        EXPECT_EQ(joined(splitAsmLine(text)), tokens) << text;
        EXPECT_EQ(asmSectionText, "kept") << text;
    }
}

TEST(Tokenizer, sectionsAreSetAsideAsTheyStand) {
    // With < and > for the markers; behind each list of tokens, what is set aside.
    // clang-format off
    const Texts cases{{"a\n<\nlda #1\n>\nb\n", "|a|;|b|; lda #1\n"}, {"a\r\n<\r\nx\r\n>\r\nb", "|a|;|b|; \nx\r\n"},
        {"<XY>;z", "|z|; Y"}, {"ab< x> cd", "|abcd|; x"}, {"x # note <\ny\n>\nz", "|x|; y\n"},
        {"x # <\n\"\n> c\nz", "|x|;|z|; \"\n"}, {"> a # > b\nc", "|a|;|c|; "}, {"<\na<\nb#>\nc> d", "|cd|; ab#"},
        {"a <\n\"b\n#AsmSectionEn", "|a|; \"b\n#AsmSectionEn"}, {"a <", "|a|; "}, {"<x>", " "}, {"<", " "},
        {"\"< \" <;y;> \"", "|#AsmSectionBegin |; y;"}, {"<<\nx>\n", " AsmSectionBegin\nx"}};
    // clang-format on
    for (const auto& [short_, expected] : cases) {
        std::string text;
        for (const char c : short_) text += c == '<' ? asmSectionBegin : c == '>' ? asmSectionEnd : std::string(1, c);
        asmSectionText = " ";
        EXPECT_EQ(joined(splitAsmLine(text)) + asmSectionText, expected) << text;
    }
}

struct SymbolReader : testing::Test, InFolder {
    /// The result and what is printed, and then the entries of all tables.
    static std::string read(const std::string& flags, const std::string& world, const std::string& ids) {
        writeFile("flags", flags);
        writeFile("world", world);
        writeFile("ids", ids);
        for (FlagTable* table : {&gameFlagTable, &worldFlagTable}) table->clear();
        collectableTable.clear();
        int status = 0;
        std::string text = captured([&] { status = generateSaveGame("flags", "world", "ids"); });
        for (const FlagTable* table : {&gameFlagTable, &worldFlagTable}) {
            for (const auto& [name, flag] : *table) {
                text += " " + name + ":" + std::to_string(flag.firstBit);
                if (table == &gameFlagTable || flag.bitCount != 1) text += "+" + std::to_string(flag.bitCount);
            }
        }
        for (const auto& [name, id] : collectableTable) text += " " + name + ":" + std::to_string(id);
        return std::to_string(status) + text;
    }
};

TEST_F(SymbolReader, gameFlagsGetTheirBitsInOrder) {
    const std::string problem = "1generateSaveGame flags.asm file problem!\n";
    // clang-format off
    const Texts cases{{".flag A\n.flags B, 3\r\n.flag C ; .flag D", "0 A:0+1 B:1+3 C:4+1 D:5+1"},
        {".flag A .flags A - \" 2\" .flag B", "0 A:1+2 B:3+1"},
        {".flags A,0\n.flags B,-3x\n.flag C\n.FLAG X\n.flag: X", "0 A:0+0 B:0+-3 C:-3+1"},
        {".flags A, 0x03\n.flags B, +3abc\n.flag\n", "0 ;:3+1 A:0+0 B:0+3"},
        {".flags A, 2147483647\n.flags B, 2147483647 .flags C, 3 .flag D",
        "0 A:0+2147483647 B:2147483647+2147483647 C:-2+3 D:1+1"},
        {".flag A\n.flags B 3\n.flag C", problem + " A:0+1"}, {".flags A, $03", problem},
        {".flags A, 2147483648", problem}, {".flags A, -2147483649", problem}, {".flags A, -99999999999999999999", problem}, {".flags A", problem},
        {".flags A \";\"", problem}, {".flags", problem}};
    // clang-format on
    for (const auto& [text, expected] : cases) EXPECT_EQ(read(text, "", ""), expected) << text;
}

TEST_F(SymbolReader, worldFlagsAreTheSumsOfTheirTerms) {
    // clang-format off
    const Texts cases{{"W = 0", "0"}, {"W = START + 3", "3"}, {"W = 8 + 2", "10"}, {"W = 1.5 + 1.5", "2"},
        {"W = -1.5 0.6", "0"}, {"W = 0x10", "16"}, {"W = 0x1.8p3x", "12"}, {"W = $10", "0"}, {"W 3 4", "4"},
        {"W", "0"}, {"W 5", "0"}, {"W = \" 7\" , 1e1", "17"}, {"W = info", "-2147483648"}, {"W = 1e999 + 2", "2"},
        {"W = nanny + 5", "-2147483643"}, {"W = 2147483647 + 1 + 1", "-2147483647"}, {"W = 9 ; W = 6", "6"},
        {"W = -2147483649 + 1", "-2147483647"}, {"W = 2147483647.5", "2147483647"}, {"W = 7\n\";\"", "7"},
        {"include = 1;W = 5", "5"}};
    // clang-format on
    std::filesystem::create_directories("generated/a");
    for (const auto& [text, sum] : cases) {
        writeFile("generated/a/w.inc", text);
        const std::string all = read("", "#AsmSectionBegin\ninclude \"a\\w.inc\"", "");
        EXPECT_TRUE(all.starts_with("0include_a\\w.inc_;_ W:" + sum)) << text << all;
    }
    writeFile("generated/w.inc", "W = 12");
    writeFile("generated\\w.inc", "W = 11");  // on Windows the same file
    EXPECT_EQ(read("", "#AsmSectionBegin\ninclude w.inc", ""), "0include_w.inc_;_ W:11") << "as it stands comes first";
    EXPECT_EQ(read("", "include w.inc", ""), "0");
    EXPECT_EQ(read("", "#AsmSectionBegin\nx include w.inc include", ""), "1x_include_w.inc_include_");
    EXPECT_EQ(read("", "#AsmSectionBegin\ninclude a", ""), "1include_") << "a folder is no file";
    std::filesystem::create_directory("generated\\f");
    writeFile("generated/f", "W = 1");
    EXPECT_EQ(read("", "#AsmSectionBegin\ninclude f", ""), "1include_") << "nor is one in the place that comes first";
}

TEST_F(SymbolReader, collectablesGetTheirIds) {
    const std::string problem = "1generateSaveGame collectableids.asm file problem!\n";
    // clang-format off
    const Texts cases{{"A = 7 B = -9x", "0 A:7 B:-9"}, {"= 3\nA=7 = = 4", problem + " :3"},
        {"A = 1\nA = 2", "0 A:2"}, {"A = 1; = 2 = 5", "0 2:5 ;:2 A:1"}, {"A = B", problem}, {"A =", problem}};
    // clang-format on
    for (const auto& [text, expected] : cases) EXPECT_EQ(read("", "", text), expected) << text;
}

}  // namespace
}  // namespace stashkeep
