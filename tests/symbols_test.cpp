// The tokenizers, and the reading of the game's sources.
#include "symbols/symbol_reader.h"
#include "symbols/symbol_tables.h"
#include "symbols/tokenizer.h"
#include "test_support.h"

namespace stashkeep {

bool operator==(const Flag& a, const Flag& b) { return a.firstBit == b.firstBit && a.bitCount == b.bitCount; }
void PrintTo(const Flag& flag, std::ostream* out) { *out << flag.firstBit << "+" << flag.bitCount; }

namespace tests {
namespace {

using std::string_literals::operator""s;

TEST(Tokenizer, textWithoutMarkersSplitsIntoTheSameTokensInBoth) {
    const struct {
        std::string text;
        TokenList tokens;
    } cases[] = {
        {"", {}},
        {" \t\n;;\n#x\n", {}},
        {"a", {"a", ";"}},
        {"a b\nc", {"a", "b", ";", "c", ";"}},
        {"a\r\nb\rc", {"a", ";", "b", ";", "c", ";"}},
        {";;a;;\n", {"a", ";"}},
        {",", {",", ";"}},
        {"a,,b", {"a", ",", ",", "b", ";"}},
        {"a;,;", {"a", ";", ",", ";"}},
        {"a=1\t=\v2", {"a=1", "=\v2", ";"}},
        {"a\0b \xFF\x80"s, {"a\0b"s, "\xFF\x80", ";"}},
        {R"("a b")", {"a b", ";"}},
        {R"(x"y z"w)", {"xy zw", ";"}},
        {R"("" x"")", {"x", ";"}},
        {R"("")", {}},
        {"\"a,b;x#y\nz\"", {"a,b;x#y\nz", ";"}},
        {R"(";")", {";"}},
        {R"(a ";")", {"a", ";"}},
        {R"(",")", {",", ";"}},
        {R"("a\nb")", {"a\nb", ";"}},
        {R"("a\"b")", {"a\"b", ";"}},
        {R"("a\\"b)", {"a\\b", ";"}},
        {R"("a\tb")", {"a\\tb", ";"}},
        {"\"a\\\tb\"", {"a\tb", ";"}},
        {R"("a\)", {"a\\", ";"}},
        {R"("a\)"s + '\0', {"a\\\0"s, ";"}},
        {R"(a\nb\")", {"a\\nb\\", ";"}},
        {"\"a\nb", {"a\nb", ";"}},
        {"ab#c\nd", {"ab", ";", "d", ";"}},
        {"ab#c#\"d\re", {"ab", ";", "e", ";"}},
        {"ab#c", {"ab", ";"}},
        {"a #AsmSect", {"a", ";"}},
        {"#asmsectionbegin\nx", {"x", ";"}},
        {"\"#AsmSectionBegin\" x", {"#AsmSectionBegin", "x", ";"}},
    };
    for (const auto& c : cases) {
        asmSectionText = "kept";
        EXPECT_EQ(splitLine(c.text), c.tokens) << c.text;
        EXPECT_EQ(splitAsmLine(c.text), c.tokens) << c.text;
        EXPECT_EQ(asmSectionText, "kept") << c.text;
    }
}

TEST(Tokenizer, sectionsAreSetAsideAsTheyStand) {
    const struct {
        std::string text;  // with < and > for the begin and the end marker
        TokenList tokens;
        std::string sections;
    } cases[] = {
        {"a\n<\nlda #1\n>\nb\n", {"a", ";", "b", ";"}, "lda #1\n"},
        {"a\r\n<\r\nx\r\n>\r\nb", {"a", ";", "b", ";"}, "\nx\r\n"},
        {"<XY>;z", {"z", ";"}, "Y"},
        {"ab< x> cd", {"abcd", ";"}, "x"},
        {"x # note <\ny\n>\nz", {"x", ";"}, "y\n"},
        {"x # <\n\"\n> c\nz", {"x", ";", "z", ";"}, "\"\n"},
        {"> a # > b\nc", {"a", ";", "c", ";"}, ""},
        {"<\na<\nb#>\nc> d", {"cd", ";"}, "ab#"},
        {"a <\n\"b\n#AsmSectionEn", {"a", ";"}, "\"b\n#AsmSectionEn"},
        {"a <", {"a", ";"}, ""},
        {"<x>", {}, ""},
        {"<", {}, ""},
        {"\"< \" <;y;> \"", {"#AsmSectionBegin ", ";"}, "y;"},
        {"<<\nx>\n", {}, "AsmSectionBegin\nx"},
    };
    for (const auto& c : cases) {
        std::string text;
        for (const char byte : c.text) {
            text += byte == '<' ? asmSectionBegin : byte == '>' ? asmSectionEnd : std::string(1, byte);
        }
        asmSectionText = "before ";
        EXPECT_EQ(splitAsmLine(text), c.tokens) << c.text;
        EXPECT_EQ(asmSectionText, "before " + c.sections) << c.text;
    }
}

class SymbolReader : public InFolder {
protected:
    Outcome read(const std::string& flags, const std::string& world, const std::string& ids) {
        writeFile("flags", flags);
        writeFile("world", world);
        writeFile("ids", ids);
        gameFlagTable.clear();
        worldFlagTable.clear();
        collectableTable.clear();
        testing::internal::CaptureStdout();
        const int status = generateSaveGame("flags", "world", "ids");
        return {status, testing::internal::GetCapturedStdout()};
    }
};

TEST_F(SymbolReader, gameFlagsGetTheirBitsInOrder) {
    const struct {
        std::string text;
        bool succeeds;
        FlagTable flags;
    } cases[] = {
        {".flag A\n.flags B, 3\r\n.flag C ; .flag D",
         true,
         {{"A", {0, 1}}, {"B", {1, 3}}, {"C", {4, 1}}, {"D", {5, 1}}}},
        {".flag A .flags A - \" 2\" .flag B", true, {{"A", {1, 2}}, {"B", {3, 1}}}},
        {".flags A,0\n.flags B,-3x\n.flag C\n.FLAG X\n.flag: X", true, {{"A", {0, 0}}, {"B", {0, -3}}, {"C", {-3, 1}}}},
        {".flags A, 0x03\n.flags B, +3abc\n.flag\n", true, {{"A", {0, 0}}, {"B", {0, 3}}, {";", {3, 1}}}},
        {".flags A, 2147483647\n.flags B, 2147483647 .flags C, 3 .flag D",
         true,
         {{"A", {0, INT32_MAX}}, {"B", {INT32_MAX, INT32_MAX}}, {"C", {-2, 3}}, {"D", {1, 1}}}},
        {".flag A\n.flags B 3\n.flag C", false, {{"A", {0, 1}}}},
        {".flags A, $03", false, {}},
        {".flags A, 2147483648", false, {}},
        {".flags A, -99999999999999999999", false, {}},
        {".flags A", false, {}},
        {".flags A \";\"", false, {}},
        {".flags", false, {}},
    };
    for (const auto& c : cases) {
        const Outcome expected = c.succeeds ? Outcome{0, ""} : Outcome{1, "generateSaveGame flags.asm file problem!\n"};
        EXPECT_EQ(read(c.text, "", ""), expected) << c.text;
        EXPECT_EQ(gameFlagTable, c.flags) << c.text;
    }
}

TEST_F(SymbolReader, worldFlagsAreTheSumsOfTheirTerms) {
    const struct {
        std::string statement;
        std::int32_t firstBit;
    } cases[] = {
        {"W = 0", 0},
        {"W = START + 3", 3},
        {"W = 8 + 2", 10},
        {"W = 1.5 + 1.5", 2},
        {"W = -1.5 0.6", 0},
        {"W = 0x10", 16},
        {"W = 0x1.8p3x", 12},
        {"W = $10", 0},
        {"W 3 4", 4},
        {"W", 0},
        {"W 5", 0},
        {"W = \" 7\" , 1e1", 17},
        {"W = info", INT32_MIN},
        {"W = nanny + 5", INT32_MIN + 5},
        {"W = 1e999 + 2", 2},
        {"W = 2147483647 + 1 + 1", INT32_MIN + 1},
        {"W = -2147483649 + 1", INT32_MIN + 1},
        {"W = 2147483647.5", INT32_MAX},
        {"W = 9 ; W = 6", 6},
        {"W = 9 ; \"include\" 1", 9},
    };
    std::filesystem::create_directories("generated/a");
    for (const auto& c : cases) {
        writeFile("generated/a/w.inc", c.statement);
        EXPECT_EQ(read("", "#AsmSectionBegin\ninclude \"a\\w.inc\"", ""), (Outcome{0, "include_a\\w.inc_;_"}));
        EXPECT_EQ(worldFlagTable["W"], (Flag{c.firstBit, 1})) << c.statement;
    }
    EXPECT_EQ(worldFlagTable["include"], (Flag{0, 1})) << "any statement makes an entry";

    writeFile("generated\\w.inc", "W = 11");
    writeFile("generated/w.inc", "W = 12");
    read("", "#AsmSectionBegin\ninclude w.inc", "");
    EXPECT_EQ(worldFlagTable["W"].firstBit, 11) << "the path as it stands comes first";

    EXPECT_EQ(read("", "include w.inc", ""), (Outcome{0, ""}));
    EXPECT_TRUE(worldFlagTable.empty());
    EXPECT_EQ(read("", "#AsmSectionBegin\nx include w.inc include", ""), (Outcome{1, "x_include_w.inc_include_"}));
    EXPECT_EQ(read("", "#AsmSectionBegin\ninclude a", ""), (Outcome{1, "include_"})) << "a folder is no file";
    EXPECT_EQ(asmSectionText, "include a");
}

TEST_F(SymbolReader, collectablesGetTheirIds) {
    const struct {
        std::string text;
        bool succeeds;
        CollectableTable ids;
    } cases[] = {
        {"A = 7 B = -9x", true, {{"A", 7}, {"B", -9}}},
        {"= 3\nA=7 = = 4", false, {{"", 3}}},
        {"A = 1; = 2 = 5", true, {{"A", 1}, {";", 2}, {"2", 5}}},
        {"A = 1\nA = 2", true, {{"A", 2}}},
        {"A = B", false, {}},
        {"A =", false, {}},
    };
    for (const auto& c : cases) {
        const Outcome expected =
            c.succeeds ? Outcome{0, ""} : Outcome{1, "generateSaveGame collectableids.asm file problem!\n"};
        EXPECT_EQ(read("", "", c.text), expected) << c.text;
        EXPECT_EQ(collectableTable, c.ids) << c.text;
    }
}

}  // namespace
}  // namespace tests
}  // namespace stashkeep
