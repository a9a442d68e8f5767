// One reader for each kind of file, which looks for a few token patterns. A file that fails throws; a term that does
// not convert is normal input and does not.
#include "symbols/symbol_reader.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <iterator>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "cli/files.h"
#include "cli/print_out.h"
#include "symbols/symbol_tables.h"
#include "symbols/tokenizer.h"

namespace stashkeep {
namespace {

using namespace std::string_view_literals;

/// Converts as strtod does; empty if the token does not start with a number or it is out of range.
std::optional<double> toDouble(const std::string& token) {
    char* end = nullptr;
    errno = 0;
    const double value = std::strtod(token.c_str(), &end);
    if (end == token.c_str() || errno == ERANGE) return std::nullopt;
    return value;
}

/// Truncates toward zero; a value out of range, or not a number, gives the lowest 32-bit value.
std::int32_t truncatedToInt32(double value) {
    const double whole = std::trunc(value);
    const bool fits = whole >= INT32_MIN && whole <= INT32_MAX;
    return fits ? static_cast<std::int32_t>(whole) : INT32_MIN;
}

/// The tokens of a whole file; throws if it cannot be read.
TokenList readTokens(const char* path, TokenList (*split)(std::string_view)) {
    const std::optional<std::string> text = readText(path);
    if (!text) throw std::runtime_error("file not readable");
    return split(*text);
}

/// Assigns bits in the order of the directives.
void readGameFlags(const char* path) {
    TokenList tokens = readTokens(path, splitLine);
    std::uint32_t nextBit = 0;           // unsigned: wraps at 32 bits
    auto entry = gameFlagTable.begin();  // the last one made is a hint for the next: sources tend to be in order
    std::size_t i = 0;
    while (i < tokens.size()) {
        const auto firstBit = static_cast<std::int32_t>(nextBit);
        if (tokens[i] == ".flag"sv) {
            entry = gameFlagTable.insert_or_assign(entry, std::move(tokens.at(i + 1)), Flag{firstBit, 1});
            nextBit += 1;
            i += 2;
        } else if (tokens[i] == ".flags"sv) {
            const std::int32_t bitCount = std::stoi(tokens.at(i + 3));
            entry = gameFlagTable.insert_or_assign(entry, std::move(tokens[i + 1]), Flag{firstBit, bitCount});
            nextBit += static_cast<std::uint32_t>(bitCount);
            i += 4;
        } else {
            i += 1;
        }
    }
}

/// The path of an included file: with backslashes as the sources have them or, if nothing exists at
/// that very path, with slashes.
std::string includedPath(const std::string& name) {
    std::string path = "generated\\" + name;
    if (access(path.c_str(), F_OK) != 0) std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

/// Sums the terms of a statement, which are its tokens from the third on. A token that does not
/// convert, such as "+" or a symbol, counts as 0.
std::int32_t sumOfTerms(std::span<const std::string> statement) {
    std::int32_t sum = 0;
    for (std::size_t i = 2; i < statement.size(); ++i) {
        if (const std::optional<double> term = toDouble(statement[i])) sum = truncatedToInt32(sum + *term);
    }
    return sum;
}

/// Every statement of an included file defines a flag.
void enterWorldFlags(TokenList tokens) {
    auto entry = worldFlagTable.begin();
    for (auto start = tokens.begin(); start != tokens.end();) {
        const auto stop = std::find(start, tokens.end(), statementEnd);
        if (start != stop) {
            const Flag flag{sumOfTerms({&*start, static_cast<std::size_t>(stop - start)}), 1};
            entry = worldFlagTable.insert_or_assign(entry, std::move(*start), flag);
        }
        start = std::next(stop);  // a list always ends with ";"
    }
}

void readWorldFlags(const char* path) {
    // Only what this appends to asmSectionText is used.
    static_cast<void>(readTokens(path, splitAsmLine));
    const TokenList sectionTokens = splitLine(asmSectionText);
    for (std::size_t i = 0; i < sectionTokens.size(); ++i) {
        printOut("%s_", sectionTokens[i].c_str());
        if (sectionTokens[i] != "include"sv) continue;
        enterWorldFlags(readTokens(includedPath(sectionTokens.at(i + 1)).c_str(), splitLine));
    }
}

void readCollectableIds(const char* path) {
    TokenList tokens = readTokens(path, splitLine);
    auto entry = collectableTable.begin();
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        if (tokens[i] != "="sv) continue;
        const std::int32_t id = std::stoi(tokens.at(i + 1));
        std::string name = i == 0 ? std::string() : std::move(tokens[i - 1]);
        entry = collectableTable.insert_or_assign(entry, std::move(name), id);
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

int generateSaveGame(const char* flagsFileName, const char* asmWorldFlags, const char* collectableIds) noexcept {
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
