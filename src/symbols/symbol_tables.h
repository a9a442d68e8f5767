// The markers of assembler sections, and what a run reads from the game's sources. There are no other global variables.
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace stashkeep {

/// A run of bits in the flag area of a savegame; the first bit is the least significant bit of its value.
struct Flag {
    std::int32_t firstBit;  // counted from the first game flag, or for world flags from the start of the area
    std::int32_t bitCount;
};

/// Flags and collectable ids by name, ordered by plain unsigned byte comparison.
using FlagTable = std::map<std::string, Flag>;
using CollectableTable = std::map<std::string, std::int32_t>;

extern const std::string asmSectionBegin;
extern const std::string asmSectionEnd;
extern std::string asmSectionText;  // the text of all sections read so far
extern FlagTable gameFlagTable;
extern FlagTable worldFlagTable;
extern CollectableTable collectableTable;

}  // namespace stashkeep
