// Both tokenizers once more, byte by byte and with a flag for every state, to compare with.
#pragma once

#include "symbols/symbol_tables.h"
#include "symbols/tokenizer.h"

namespace stashkeep {

/// The tokens of `text`; sections are looked for, and appended to `sectionText`, where that is given.
inline TokenList splitSlowly(const std::string& text, std::string* sectionText) {
    TokenList tokens;
    std::string pending;
    bool isQuoted = false;
    bool isComment = false;
    bool isSection = false;
    const auto end = [&](const std::string& token) {
        if (!pending.empty()) tokens.push_back(pending);
        pending.clear();
        if (token == "," || (token == ";" && !tokens.empty() && tokens.back() != ";")) tokens.push_back(token);
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const char next = i + 1 < text.size() ? text[i + 1] : '\0';
        if (isQuoted && c == '\\' && (next == 'n' || next == '\\' || next == '"' || next == '\t')) {
            pending += next == 'n' ? '\n' : next;
            ++i;
        } else if (isQuoted) {
            isQuoted = c != '"';
            if (isQuoted) pending += c;
        } else if (sectionText != nullptr && text.compare(i, asmSectionBegin.size(), asmSectionBegin) == 0) {
            isSection = true;
            i += asmSectionBegin.size();
        } else if (sectionText != nullptr && text.compare(i, asmSectionEnd.size(), asmSectionEnd) == 0) {
            isSection = false;
            i += asmSectionEnd.size();
        } else if (isSection) {
            *sectionText += c;
        } else if (c == '\r' || c == '\n' || (c == ';' && !isComment)) {
            isComment = false;
            end(";");
        } else if (c == '#' || isComment) {
            isComment = true;
        } else if (c == ' ' || c == '\t' || c == ',') {
            end(std::string(1, c));
        } else if (c == '"') {
            isQuoted = true;
        } else {
            pending += c;
        }
    }
    end(";");
    return tokens;
}

}  // namespace stashkeep
