// The tokenizers, and the paths of included files; fuzz/ compares the reader with a slow one.
#include "cli/print_out.h"
#include "fuzz/slow_tokenizer.h"
#include "symbols/symbol_reader.h"
#include "test_support.h"

using namespace stashkeep;

TEST(Tokenizer, splitsEveryShortTextAsTheSlowOnesDo) {
    TokenList symbols{"#AsmSection", "#AsmSectionBegin", "#AsmSectionEnd"};
    for (const char byte : std::string(" \t\r\n,;\"#\\na\0", 12)) symbols.emplace_back(1, byte);
    for (std::size_t number = 0; number < 54'241; ++number) {  // of up to 4 symbols
        std::string text;
        for (std::size_t rest = number; rest > 0; rest = (rest - 1) / 15) text += symbols[(rest - 1) % 15];
        ASSERT_TRUE(isSplitAsSlowly(text)) << testing::PrintToString(text);
    }
}

struct SymbolReader : testing::Test, InFolder {};

TEST_F(SymbolReader, includesFilesByTheirPathsAsTheyStandAndThenWithSlashes) {
    // What is printed, and then the result and the first bit of W.
    const auto read = [](const std::string& section) {
        writeFile("world", "#AsmSectionBegin\n" + section);
        worldFlagTable.clear();
        return captured([&] {
            printOut("%d ", generateSaveGame("none", "world", "none"));
            printOut("%d", worldFlagTable["W"].firstBit);
        });
    };
    std::filesystem::create_directories("generated/a");
    writeFile("none", "");
    writeFile("generated/a/w.inc", "W = 12");
    EXPECT_EQ(read("include \"a\\\\w.inc\""), "include_a\\w.inc_;_0 12");
    writeFile("generated\\a\\w.inc", "W = 11");
    EXPECT_EQ(read("include a\\w.inc"), "include_a\\w.inc_;_0 11");
    EXPECT_EQ(read("include a\\w.inc include no"), "include_a\\w.inc_include_1 0") << "no entry until all are read";
    std::filesystem::create_directory("generated\\f");
    writeFile("generated/f", "W = 1");
    EXPECT_EQ(read("include f"), "include_1 0") << "a folder is not skipped";
}
