// A second, slow and obvious implementation of both tokenizers, which has to give the same tokens.
#pragma once

#include "symbols/symbol_tables.h"
#include "symbols/tokenizer.h"

namespace stashkeep {

/// The tokens of `text`. Only if `sectionText` is not null, markers count, and sections are appended to it.
inline TokenList splitSlowly(const std::string& text, std::string* sectionText) {
    TokenList tokens;
    std::string pending;
    bool isQuoted = false;
    bool isComment = false;
    bool isSection = false;
    const auto end = [&](char byte) {
        if (!pending.empty()) tokens.push_back(pending);
        pending.clear();
        if (byte == ',' || (byte == ';' && !tokens.empty() && tokens.back() != ";")) tokens.emplace_back(1, byte);
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto isMarker = [&](const std::string& marker) { return text.compare(i, marker.size(), marker) == 0; };
        const char c = text[i];
        const char next = i + 1 < text.size() ? text[i + 1] : '\0';
        if (isQuoted) {
            const bool isEscape = c == '\\' && (next == 'n' || next == '\\' || next == '"' || next == '\t');
            if (isEscape) ++i;
            isQuoted = isEscape || c != '"';
            if (isQuoted) pending += !isEscape ? c : next == 'n' ? '\n' : next;
        } else if (sectionText != nullptr && (isMarker("#AsmSectionBegin") || isMarker("#AsmSectionEnd"))) {
            isSection = isMarker("#AsmSectionBegin");
            i += isSection ? 16 : 14;
        } else if (isSection) {
            *sectionText += c;
        } else if (c == '\r' || c == '\n' || (c == ';' && !isComment)) {
            isComment = false;
            end(';');
        } else if (c == '#' || isComment) {
            isComment = true;
        } else if (c == ' ' || c == '\t' || c == ',') {
            end(c);
        } else if (c == '"') {
            isQuoted = true;
        } else {
            pending += c;
        }
    }
    end(';');
    return tokens;
}

/// Whether the tokenizers do the same with `text`.
inline bool isSplitAsSlowly(const std::string& text) {
    std::string sectionText;
    asmSectionText.clear();
    return splitLine(text) == splitSlowly(text, nullptr) && splitAsmLine(text) == splitSlowly(text, &sectionText) &&
           asmSectionText == sectionText;
}

}  // namespace stashkeep
