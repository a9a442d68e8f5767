// What one run reads from the game's sources. These six objects are all of the program's state.
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace stashkeep {

/// A run of bits in the flag area of a savegame; its first bit is its value's lowest.
struct Flag {
    std::int32_t firstBit;  // game flags count from the first game flag, world flags from the area's start
    std::int32_t bitCount;
};

/// Flags and collectable ids by name, in plain unsigned byte order.
using FlagTable = std::map<std::string, Flag>;
using CollectableTable = std::map<std::string, std::int32_t>;

extern const std::string asmSectionBegin;
extern const std::string asmSectionEnd;
extern std::string asmSectionText;  // the text of all asm sections read so far
extern FlagTable gameFlagTable;
extern FlagTable worldFlagTable;
extern CollectableTable collectableTable;

}  // namespace stashkeep
