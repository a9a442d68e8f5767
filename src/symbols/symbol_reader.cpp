// Each kind of file has its few token patterns, and a reader that looks for them. A file that fails ends its reading
// with an exception; a term that does not convert is ordinary input, and costs none.
#include "symbols/symbol_reader.h"

#ifndef _WIN32
#include <unistd.h>
#endif

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <iterator>
#include <limits>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/load_file.h"
#include "cli/print_out.h"
#include "symbols/symbol_tables.h"
#include "symbols/tokenizer.h"

namespace stashkeep {
namespace {

using namespace std::string_view_literals;
using Int32Limits = std::numeric_limits<std::int32_t>;

/// As strtol reads it; throws when it starts with no number, or with one beyond 32 bits.
std::int32_t toInteger(const std::string& token) {
    char* end = nullptr;
    errno = 0;
    const long value = std::strtol(token.c_str(), &end, 10);
    const bool fits = errno != ERANGE && value >= Int32Limits::min() && value <= Int32Limits::max();
    if (end == token.c_str() || !fits) throw std::runtime_error("not a number");
    return static_cast<std::int32_t>(value);
}

/// As strtod reads it; none when it starts with no number, or with one beyond a double.
std::optional<double> toDouble(const std::string& token) {
    char* end = nullptr;
    errno = 0;
    const double value = std::strtod(token.c_str(), &end);
    if (end == token.c_str() || errno == ERANGE) return std::nullopt;
    return value;
}

/// Truncates towards zero; what 32 bits cannot hold gives their lowest value.
std::int32_t truncatedToInt32(double value) {
    const double whole = std::trunc(value);
    const bool fits = whole >= Int32Limits::min() && whole <= Int32Limits::max();
    return fits ? static_cast<std::int32_t>(whole) : Int32Limits::min();
}

/// The tokens of a whole file; throws when it could not be opened (`file` is empty) or cannot be read.
TokenList readTokens(const File& file, TokenList (*split)(std::string)) {
    std::optional<std::string> text = file ? readText(file) : std::nullopt;
    if (!text) throw std::runtime_error("file not readable");
    return split(*std::move(text));
}

/// Sets the entry of a name, which is taken out of its token: no reader looks at that again. Returns the
/// entry. Sources tend to name things in order, so that a name's place is looked for beside the entry before.
template <typename Table>
typename Table::iterator enter(Table& table, typename Table::iterator before, std::string&& name,
                               const typename Table::mapped_type& value) {
    const auto entry = table.emplace_hint(before, std::move(name), value);
    entry->second = value;  // where the name has been there already
    return entry;
}

/// Hands out bits in the order of the directives.
void readGameFlags(const char* path) {
    TokenList tokens = readTokens(openFile(path, "r"), splitLine);
    std::uint32_t nextBit = 0;  // unsigned, since counts of any size may wrap it
    auto entry = gameFlagTable.end();
    std::size_t i = 0;
    while (i < tokens.size()) {
        const auto firstBit = static_cast<std::int32_t>(nextBit);
        if (tokens[i] == ".flag"sv) {
            entry = enter(gameFlagTable, entry, std::move(tokens.at(i + 1)), {firstBit, 1});
            nextBit += 1;
            i += 2;
        } else if (tokens[i] == ".flags"sv) {
            const std::int32_t bitCount = toInteger(tokens.at(i + 3));
            entry = enter(gameFlagTable, entry, std::move(tokens[i + 1]), {firstBit, bitCount});
            nextBit += static_cast<std::uint32_t>(bitCount);
            i += 4;
        } else {
            i += 1;
        }
    }
}

/// The game's sources name included files with backslashes. Where those separate no folders, a
/// path that leads to no file as it stands is tried with slashes.
File openIncluded(const std::string& name) {
    std::string path = "generated\\" + name;
    File file = openFile(path.c_str(), "r");
#ifndef _WIN32
    if (!file && access(path.c_str(), F_OK) != 0) {
        std::replace(path.begin(), path.end(), '\\', '/');
        file = openFile(path.c_str(), "r");
    }
#endif
    return file;
}

/// Sums the terms of a statement: its name, a token of any kind, and the terms. What does not
/// convert, such as a "+" or a symbol, counts as 0.
std::int32_t sumOfTerms(std::span<const std::string> statement) {
    std::int32_t sum = 0;
    for (std::size_t i = 2; i < statement.size(); ++i) {
        if (const std::optional<double> term = toDouble(statement[i])) sum = truncatedToInt32(sum + *term);
    }
    return sum;
}

/// Every statement of an included file makes an entry.
void enterWorldFlags(TokenList& tokens) {
    auto entry = worldFlagTable.end();
    for (auto start = tokens.begin(); start != tokens.end();) {
        const auto stop = std::find(start, tokens.end(), statementEnd);
        if (start != stop) entry = enter(worldFlagTable, entry, std::move(*start), {sumOfTerms({start, stop}), 1});
        start = std::next(stop);  // the last token ends a statement
    }
}

void readWorldFlags(const char* path) {
    // Only what this leaves in asmSectionText counts.
    static_cast<void>(readTokens(openFile(path, "r"), splitAsmLine));
    const TokenList sectionTokens = splitLine(asmSectionText);
    std::vector<TokenList> includedFiles;  // each has to be readable before the first makes entries
    for (std::size_t i = 0; i < sectionTokens.size(); ++i) {
        printOut("%s_", sectionTokens[i].c_str());
        if (sectionTokens[i] != "include"sv) continue;
        includedFiles.push_back(readTokens(openIncluded(sectionTokens.at(i + 1)), splitLine));
    }
    for (TokenList& tokens : includedFiles) enterWorldFlags(tokens);
}

void readCollectableIds(const char* path) {
    TokenList tokens = readTokens(openFile(path, "r"), splitLine);
    auto entry = collectableTable.end();
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        if (tokens[i] != "="sv) continue;
        const std::int32_t id = toInteger(tokens.at(i + 1));
        entry = enter(collectableTable, entry, i == 0 ? std::string() : std::move(tokens[i - 1]), id);
    }
}

bool succeeds(void (*read)(const char* path), const char* path) {
    try {
        read(path);
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

}  // namespace

int generateSaveGame(const char* flagsFileName, const char* asmWorldFlags, const char* collectableIds) {
    if (!succeeds(readGameFlags, flagsFileName)) {
        printOut("generateSaveGame flags.asm file problem!\n");
        return 1;
    }
    asmSectionText.clear();
    if (!succeeds(readWorldFlags, asmWorldFlags)) return 1;
    if (!succeeds(readCollectableIds, collectableIds)) {
        printOut("generateSaveGame collectableids.asm file problem!\n");
        return 1;
    }
    return 0;
}

}  // namespace stashkeep
