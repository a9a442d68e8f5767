// Tokenizers for the game's source files. A token is a word, "," for each comma, or ";" for the end of
// a statement, which is a line end, a semicolon or the end of the text. No token is empty, and no list
// begins with ";" or has two in a row, unless they were quoted.
//
// Double quotes keep separators inside a word. Inside them, a backslash followed by n is a line feed;
// followed by a backslash, a double quote or a tab byte, it is that byte. A number sign starts a
// comment that ends with the line. Every text is valid, whatever its bytes. See docs/formats.md.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace stashkeep {

using TokenList = std::vector<std::string>;

inline constexpr std::string_view statementEnd = ";";

/// The tokens of a whole text. Throws std::bad_alloc when memory runs out.
[[nodiscard]] TokenList splitLine(std::string_view text);

/// The same, except that sections are not tokenized: the text between "#AsmSectionBegin" and
/// "#AsmSectionEnd", or the end of the text, is appended unchanged to asmSectionText, which the caller
/// empties. A marker counts everywhere but in quotes, even in a comment or a section, and consumes the
/// one byte after it.
[[nodiscard]] TokenList splitAsmLine(std::string_view text);

}  // namespace stashkeep
