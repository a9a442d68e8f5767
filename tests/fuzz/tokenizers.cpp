// Any text: the tokenizers agree with the slow ones, and keep what their callers rely on.
#include <algorithm>
#include <cstdlib>

#include "slow_tokenizer.h"

using namespace stashkeep;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const std::string text(data, data + size);
    std::string sectionText;
    asmSectionText.clear();
    const TokenList tokens = splitLine(text);
    const TokenList asmTokens = splitAsmLine(text);
    if (tokens != splitSlowly(text, nullptr) || asmTokens != splitSlowly(text, &sectionText)) std::abort();
    if (asmSectionText != sectionText) std::abort();
    for (const TokenList& list : {tokens, asmTokens}) {
        if (std::count(list.begin(), list.end(), "") > 0 || (!list.empty() && list.back() != ";")) std::abort();
    }
    // A text without markers is the same for both, and comes out of a section unchanged.
    if (text.find("#AsmSection") != std::string::npos) return 0;
    if (tokens != asmTokens || !asmSectionText.empty()) std::abort();
    if (!splitAsmLine(asmSectionBegin + "\n" + text + asmSectionEnd).empty() || asmSectionText != text) std::abort();
    return 0;
}
