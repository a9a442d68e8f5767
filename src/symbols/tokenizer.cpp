// One scanner serves both tokenizers. It consumes each word, quoted stretch, comment and section as a whole: its only
// state is the pending token.
#include "symbols/tokenizer.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

#include "symbols/symbol_tables.h"

namespace stashkeep {
namespace {

enum class ByteClass : std::uint8_t { ordinary, blank, lineEnd, comma, semicolon, quote, numberSign };

constexpr std::array<ByteClass, 256> byteClasses = [] {
    std::array<ByteClass, 256> classes{};  // ordinary
    classes[' '] = classes['\t'] = ByteClass::blank;
    classes['\r'] = classes['\n'] = ByteClass::lineEnd;
    classes[','] = ByteClass::comma;
    classes[';'] = ByteClass::semicolon;
    classes['"'] = ByteClass::quote;
    classes['#'] = ByteClass::numberSign;
    return classes;
}();

ByteClass classOf(char byte) { return byteClasses[static_cast<unsigned char>(byte)]; }

struct Tokens {
    TokenList list;
    bool isPending = false;  // whether more bytes may be appended to the last token
};

/// The bytes in [first, last).
std::string_view textBetween(const char* first, const char* last) {
    return {first, static_cast<std::size_t>(last - first)};
}

void append(Tokens& tokens, std::string_view bytes) {
    if (bytes.empty()) return;
    if (tokens.isPending) {
        tokens.list.back() += bytes;
    } else {
        tokens.list.emplace_back(bytes);
        tokens.isPending = true;
    }
}

void endStatement(Tokens& tokens) {
    tokens.isPending = false;
    if (!tokens.list.empty() && tokens.list.back() != statementEnd) tokens.list.emplace_back(statementEnd);
}

// The take and skip functions get a position in the text, `at`, and its end, and return where to continue.

/// Appends a quoted stretch to the pending token; `at` is behind the opening quote.
const char* takeQuoted(const char* at, const char* end, Tokens& tokens) {
    for (;;) {
        const char* const special = std::find_if(at, end, [](char byte) { return byte == '"' || byte == '\\'; });
        append(tokens, textBetween(at, special));
        if (special == end) return end;
        at = special + 1;
        if (*special == '"') return at;
        const bool isEscape = at != end && (*at == 'n' || *at == '\\' || *at == '"' || *at == '\t');
        if (!isEscape) {
            append(tokens, "\\");
            continue;
        }
        append(tokens, *at == 'n' ? "\n" : std::string_view(at, 1));
        ++at;
    }
}

bool startsWith(const char* at, const char* end, std::string_view marker) {
    return textBetween(at, end).starts_with(marker);
}

/// Skips the marker at `at` and the one byte that follows it.
const char* skipMarker(const char* at, const char* end, std::string_view marker) {
    return at + std::min(end - at, static_cast<std::ptrdiff_t>(marker.size()) + 1);
}

/// Appends a section to asmSectionText; `at` is its first byte. Stops before the end marker.
const char* takeSection(const char* at, const char* end) {
    for (;;) {
        const char* const numberSign = std::find(at, end, '#');
        asmSectionText.append(at, numberSign);
        if (numberSign == end || startsWith(numberSign, end, asmSectionEnd)) return numberSign;
        if (startsWith(numberSign, end, asmSectionBegin)) {
            at = skipMarker(numberSign, end, asmSectionBegin);
        } else {
            asmSectionText += '#';
            at = numberSign + 1;
        }
    }
}

/// Skips a comment up to its line end; `at` is its number sign.
const char* skipComment(const char* at, const char* end) {
    return std::find_if(at, end, [](char byte) { return classOf(byte) == ByteClass::lineEnd; });
}

/// Skips what the number sign at `at` starts: markers, whose sections are taken, and a comment, which
/// may hold more markers. Returns the first byte of plain text.
const char* skipCommentAndSections(const char* at, const char* end) {
    bool inComment = false;
    while (at != end) {
        if (*at != '#') {
            if (!inComment || classOf(*at) == ByteClass::lineEnd) break;
            ++at;
        } else if (startsWith(at, end, asmSectionBegin)) {
            at = takeSection(skipMarker(at, end, asmSectionBegin), end);
        } else if (startsWith(at, end, asmSectionEnd)) {
            at = skipMarker(at, end, asmSectionEnd);
        } else {
            inComment = true;
            ++at;
        }
    }
    return at;
}

/// Splits `text`; `skipNumberSign` skips what a number sign starts.
TokenList scan(std::string_view text, const char* (*skipNumberSign)(const char* at, const char* end)) {
    constexpr std::size_t usualTokenSize = 6;  // bytes of text, with the separator
    Tokens tokens;
    tokens.list.reserve(text.size() / usualTokenSize);
    const char* at = text.data();
    const char* const end = at + text.size();
    while (at != end) {
        const char* const start = at++;
        switch (classOf(*start)) {
            case ByteClass::ordinary:
                at = std::find_if(at, end, [](char byte) { return classOf(byte) != ByteClass::ordinary; });
                append(tokens, textBetween(start, at));
                break;
            case ByteClass::blank:
                tokens.isPending = false;
                break;
            case ByteClass::lineEnd:
            case ByteClass::semicolon:
                endStatement(tokens);
                break;
            case ByteClass::comma:
                tokens.isPending = false;
                tokens.list.emplace_back(",");
                break;
            case ByteClass::quote:
                at = takeQuoted(at, end, tokens);
                break;
            case ByteClass::numberSign:
                at = skipNumberSign(start, end);
                break;
        }
    }
    endStatement(tokens);
    return std::move(tokens.list);
}

}  // namespace

TokenList splitLine(std::string_view text) { return scan(text, skipComment); }

TokenList splitAsmLine(std::string_view text) { return scan(text, skipCommentAndSections); }

}  // namespace stashkeep
