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
        const auto isMarker = [&](const std::string& marker) {
            return sectionText != nullptr && text.compare(i, marker.size(), marker) == 0;
        };
        const char c = text[i];
        const char next = i + 1 < text.size() ? text[i + 1] : '\0';
        if (isQuoted) {
            const bool isEscape = c == '\\' && (next == 'n' || next == '\\' || next == '"' || next == '\t');
            if (isEscape) ++i;
            isQuoted = isEscape || c != '"';
            if (isQuoted) pending += !isEscape ? c : next == 'n' ? '\n' : next;
        } else if (isMarker(asmSectionBegin) || isMarker(asmSectionEnd)) {
            isSection = isMarker(asmSectionBegin);
            i += (isSection ? asmSectionBegin : asmSectionEnd).size();
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
