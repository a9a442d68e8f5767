// The tables come from files, so a flag may claim any bits: only those of the area are read, and never more than 32.
#include "inspect/flag_dump.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "cli/print_out.h"
#include "symbols/symbol_tables.h"

namespace stashkeep {
namespace {

constexpr int gameFlagStart = 256;  // the bit of the flag area at which game flags are numbered from 0
constexpr int valueWidth = 32;      // bits

/// Lines on their way to printOut. To format and print each by itself would take most of the time of a
/// check with large symbol files.
struct Lines {
    std::array<char, 0x1000> text;
    std::size_t size = 0;
};

void print(Lines& lines) {
    printOut("%.*s", static_cast<int>(lines.size), lines.text.data());
    lines.size = 0;
}

void append(Lines& lines, std::string_view text) {
    while (!text.empty()) {
        if (lines.size == lines.text.size()) print(lines);
        const std::size_t count = text.copy(lines.text.data() + lines.size, lines.text.size() - lines.size);
        lines.size += count;
        text.remove_prefix(count);
    }
}

/// Appends the line of a flag whose bits are numbered from bit `start` of the flag area.
void appendFlag(Lines& lines, const DiscSavegame& savegame, const std::string& name, const Flag& flag, int start) {
    std::uint32_t value = 0;
    for (int k = 0; k < std::min(flag.bitCount, valueWidth); ++k) {
        value |= flagBit(savegame, std::int64_t{start} + flag.firstBit + k) << k;
    }
    std::array<char, 11> digits;  // of 32 bits, with a sign
    const char* const end = std::to_chars(digits.begin(), digits.end(), static_cast<std::int32_t>(value)).ptr;
    append(lines, name.c_str());  // up to a NUL, if it holds one
    append(lines, " = ");
    append(lines, {digits.begin(), end});
    append(lines, "\n");
}

}  // namespace

void printFlags(const DiscSavegame& savegame) {
    Lines lines;
    append(lines, ">>gameflags:\n");
    for (const auto& [name, flag] : gameFlagTable) appendFlag(lines, savegame, name, flag, gameFlagStart);
    append(lines, ">>worldflags:\n");
    for (const auto& [name, flag] : worldFlagTable) {
        if (name.starts_with("WORLDFLAG_")) appendFlag(lines, savegame, name, flag, 0);
    }
    print(lines);
}

}  // namespace stashkeep
