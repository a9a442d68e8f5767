// How texts are split into tokens, and which text belongs to sections. The cases are tables of docs/formats.md.
#include "symbols/tokenizer.h"

#include "symbols/symbol_tables.h"
#include "test_support.h"

using namespace stashkeep;

/// As the table shows them: `a`, `b`, `;`
static std::string shown(const TokenList& tokens) {
    std::string text;
    for (const std::string& token : tokens) text += (text.empty() ? "`" : ", `") + token + "`";
    return text.empty() ? "none" : text;
}

TEST(Tokenizer, splitsWordsQuotesEscapesAndCommentsAsTheTableSays) {
    for (const auto& [text, tokens, row] : tableOfFormats("| text | tokens |")) {
        EXPECT_EQ(shown(splitLine(text)), tokens) << row;
        EXPECT_EQ(shown(splitAsmLine(text)), tokens) << row << ", without sections";
    }
}

TEST(Tokenizer, collectsSectionsAsTheTableSays) {
    for (const auto& [text, section, row] : tableOfFormats("| text of GLOBALDEFINES | section text |")) {
        asmSectionText.clear();
        static_cast<void>(splitAsmLine(text));
        EXPECT_EQ(asmSectionText.empty() ? "none" : "`" + asmSectionText + "`", section) << row;
    }
}
