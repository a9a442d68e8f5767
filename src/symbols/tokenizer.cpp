// One scanner serves both tokenizers. It takes runs of bytes of one class at a time; what a quote, a comment or a
// section holds is taken in one go as well, so that the scanner itself knows but one state.
#include "symbols/tokenizer.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <exception>
#include <string_view>
#include <utility>

#include "cli/load_file.h"
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

/// Whether a word is complete when a byte of the class follows it; behind a quote or a number sign it
/// may go on.
constexpr bool endsWord(ByteClass byteClass) {
    return byteClass != ByteClass::quote && byteClass != ByteClass::numberSign;
}

/// The first byte that is not of `byteClass`, or `end`.
const char* skipClass(ByteClass byteClass, const char* at, const char* end) {
    while (at != end && classOf(*at) == byteClass) ++at;
    return at;
}

struct Tokens {
    TokenList list;
    std::string pending;  // the word that is being collected
};

void flush(Tokens& tokens) {
    if (tokens.pending.empty()) return;
    tokens.list.push_back(std::move(tokens.pending));
    tokens.pending.clear();
}

void endStatement(Tokens& tokens) {
    flush(tokens);
    if (!tokens.list.empty() && tokens.list.back() != statementEnd) tokens.list.emplace_back(statementEnd);
}

/// Appends what is quoted from `at`, the byte behind the opening quote. Returns where the text goes
/// on behind the closing one.
const char* takeQuoted(const char* at, const char* end, std::string& pending) {
    for (;;) {
        const char* const special = std::find_if(at, end, [](char byte) { return byte == '"' || byte == '\\'; });
        pending.append(at, special);
        if (special == end) return end;
        at = special + 1;
        if (*special == '"') return at;
        const char escaped = at == end ? '\0' : *at;
        if (escaped == 'n') {
            pending += '\n';
            ++at;
        } else if (escaped == '\\' || escaped == '"' || escaped == '\t') {
            pending += escaped;
            ++at;
        } else {
            pending += '\\';
        }
    }
}

bool startsWith(const char* at, const char* end, std::string_view marker) {
    return std::string_view(at, static_cast<std::size_t>(end - at)).starts_with(marker);
}

/// Behind the marker at `at` and the one byte that follows it.
const char* skipMarker(const char* at, const char* end, std::string_view marker) {
    return at + std::min(end - at, static_cast<std::ptrdiff_t>(marker.size()) + 1);
}

/// Appends to asmSectionText from `at`, the first byte of a section. Returns where the text goes on
/// behind the end marker.
const char* takeSection(const char* at, const char* end) {
    for (;;) {
        const char* const numberSign = std::find(at, end, '#');
        asmSectionText.append(at, numberSign);
        if (numberSign == end) return end;
        if (startsWith(numberSign, end, asmSectionEnd)) return skipMarker(numberSign, end, asmSectionEnd);
        if (startsWith(numberSign, end, asmSectionBegin)) {
            at = skipMarker(numberSign, end, asmSectionBegin);
        } else {
            asmSectionText += '#';
            at = numberSign + 1;
        }
    }
}

/// From a number sign to the end of its line.
const char* skipComment(const char* at, const char* end) {
    return std::find_if(at, end, [](char byte) { return classOf(byte) == ByteClass::lineEnd; });
}

/// From a number sign over all that it starts: markers with their sections, and a comment to the
/// end of its line, which may hold more of them. Stops at the first byte of plain text.
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

/// Makes room for the tokens of a text and for what is made of them, which saves moving tokens over and
/// over, and getting memory piece by piece. Only a short cut: where memory is scarce, both are done.
void makeRoom(TokenList& tokens, std::size_t textSize) {
    constexpr std::size_t usualTokenSize = 4;   // bytes of text for each token, at the least
    constexpr std::size_t namesAndEntries = 5;  // bytes for each byte of text: long names, and what tables hold of them
    const std::size_t tokenCount = textSize / usualTokenSize;
    growHeap(tokenCount * sizeof(std::string) + textSize * namesAndEntries);
    try {
        tokens.reserve(tokenCount);
    } catch (const std::exception&) {  // enough for all the tokens that there are, perhaps
    }
}

/// Gives back the room of a list that has come out far shorter than expected, as it does for a text of
/// comments: lists of many files may be kept side by side.
void giveBackRoom(TokenList& tokens) {
    constexpr std::size_t worthMoving = 16;  // times as much room as there are tokens
    if (tokens.size() * worthMoving < tokens.capacity()) tokens.shrink_to_fit();
}

/// Splits `text`; `skipNumberSign` takes a number sign and what it starts, and returns where plain
/// text goes on.
TokenList scan(std::string_view text, const char* (*skipNumberSign)(const char* at, const char* end)) {
    Tokens tokens;
    makeRoom(tokens.list, text.size());
    const char* at = text.data();
    const char* const end = at + text.size();
    while (at != end) {
        const char* const start = at++;
        switch (classOf(*start)) {
            case ByteClass::ordinary:
                at = skipClass(ByteClass::ordinary, at, end);
                // A word that nothing can join goes into the list without a stop in `pending`.
                if (tokens.pending.empty() && at != end && endsWord(classOf(*at))) {
                    tokens.list.emplace_back(start, at);
                } else {
                    tokens.pending.append(start, at);
                }
                break;
            case ByteClass::blank:
                flush(tokens);
                at = skipClass(ByteClass::blank, at, end);
                break;
            case ByteClass::lineEnd:
            case ByteClass::semicolon:
                endStatement(tokens);
                break;
            case ByteClass::comma:
                flush(tokens);
                tokens.list.emplace_back(",");
                break;
            case ByteClass::quote:
                at = takeQuoted(at, end, tokens.pending);
                break;
            case ByteClass::numberSign:
                at = skipNumberSign(start, end);
                break;
        }
    }
    endStatement(tokens);
    giveBackRoom(tokens.list);
    return std::move(tokens.list);
}

}  // namespace

// Both own their texts, so that these are gone before the tokens are used.
// NOLINTBEGIN(performance-unnecessary-value-param)
// cppcheck-suppress passedByValue
TokenList splitLine(std::string text) { return scan(text, skipComment); }

// cppcheck-suppress passedByValue
TokenList splitAsmLine(std::string text) { return scan(text, skipCommentAndSections); }
// NOLINTEND(performance-unnecessary-value-param)

}  // namespace stashkeep
