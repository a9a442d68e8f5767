// Splitting the game's source files into tokens: words, "," for every comma, and ";" where a
// statement ends (at a line end, a semicolon or the end of the text). No token is empty. A quoted
// semicolon makes the same token as the end of a statement, so that a statement may be.
//
// Double quotes keep separators inside a word; in them a backslash before n, a backslash, a double
// quote or a tab byte stands for a line feed or for that byte. A number sign starts a comment that
// runs to the line end. Any byte may occur; none is an error.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace stashkeep {

using TokenList = std::vector<std::string>;

inline constexpr std::string_view statementEnd = ";";

/// The tokens of a whole text. Throws std::bad_alloc when memory runs out.
[[nodiscard]] TokenList splitLine(std::string text);

/// The same, except that the text between "#AsmSectionBegin" and "#AsmSectionEnd", or the end of the
/// text, is appended as it stands to asmSectionText, which is the caller's to empty. A marker counts
/// wherever it is not in quotes, in comments and sections too, and takes the one byte behind it along.
[[nodiscard]] TokenList splitAsmLine(std::string text);

}  // namespace stashkeep
