// Flags come from untrusted files and may claim any bits: at most 32 are read for each, and none outside the flag area.
#include "inspect/flag_dump.h"

#include <algorithm>
#include <cstdint>
#include <string>

#include "cli/print_out.h"
#include "symbols/symbol_tables.h"

namespace stashkeep {
namespace {

constexpr int gameFlagStart = 256;  // bit of the flag area that is game-flag bit 0
constexpr int valueWidth = 32;      // bits

/// Prints the line of a flag whose bits are numbered from bit `start` of the flag area.
void printFlag(const DiscSavegame& savegame, const std::string& name, const Flag& flag, int start) {
    std::uint32_t value = 0;
    for (int k = 0; k < std::min(flag.bitCount, valueWidth); ++k) {
        value |= flagBit(savegame, std::int64_t{start} + flag.firstBit + k) << k;
    }
    printOut("%s = %d\n", name.c_str(), static_cast<std::int32_t>(value));
}

}  // namespace

void printFlags(const DiscSavegame& savegame) {
    printOut(">>gameflags:\n");
    for (const auto& [name, flag] : gameFlagTable) printFlag(savegame, name, flag, gameFlagStart);
    printOut(">>worldflags:\n");
    for (const auto& [name, flag] : worldFlagTable) {
        if (name.starts_with("WORLDFLAG_")) printFlag(savegame, name, flag, 0);
    }
}

}  // namespace stashkeep
