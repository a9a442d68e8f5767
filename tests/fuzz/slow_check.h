// A second, slow and obvious implementation of check, which has to print the same. Only the report is the program's.
#pragma once

#include <cmath>
#include <stdexcept>

#include "fuzz/slow_tokenizer.h"
#include "inspect/savegame_report.h"
#include "test_support.h"

namespace stashkeep {

inline std::string upToNul(const std::string& text) { return text.substr(0, text.find('\0')); }

inline TokenList tokensSlowly(const std::string& path, std::string* sectionText = nullptr) {
    if (!std::filesystem::is_regular_file(path)) throw std::runtime_error(path);
    return splitSlowly(readFile(path, std::ios::in), sectionText);
}

/// Adds a term of a world flag to `sum`; one that is no number, or out of range, counts as 0.
inline void addSlowly(double& sum, const std::string& term) try {
    sum = std::trunc(sum + std::stod(term));
    if (!(sum >= INT32_MIN && sum <= INT32_MAX)) sum = INT32_MIN;
} catch (const std::logic_error&) {
}

/// The dump of flags that are numbered from bit `start` of the flag area.
inline std::string dumpSlowly(const DiscSavegame& savegame, const std::map<std::string, Flag>& flags, int start) {
    std::string text;
    for (const auto& [name, flag] : flags) {
        std::uint32_t value = 0;
        for (int k = 0; k < 32 && k < flag.bitCount; ++k) {
            const std::int64_t bit = std::int64_t{start} + flag.firstBit + k;
            if (bit < 0 || bit >= 1280) continue;
            if ((savegame.flagBits[static_cast<std::size_t>(bit / 8)] >> bit % 8 & 1) == 1) value += 1U << k;
        }
        text += upToNul(name) + " = " + std::to_string(static_cast<std::int32_t>(value)) + "\n";
    }
    return text;
}

/// The exit status of "check data flags ids world" as a digit, and what it prints after the warning.
inline std::string checkSlowly() {
    std::string printed;
    std::string complaint = "generateSaveGame flags.asm file problem!\n";
    std::map<std::string, Flag> gameFlags;
    std::map<std::string, Flag> worldFlags;
    CollectableTable ids;
    try {
        TokenList tokens = tokensSlowly("flags");
        std::uint32_t nextBit = 0;
        for (std::size_t i = 0; i < tokens.size(); ++i) {
            if (tokens[i] != ".flag" && tokens[i] != ".flags") continue;
            const int width = tokens[i] == ".flag" ? 1 : std::stoi(tokens.at(i + 3));
            gameFlags[tokens[i + 1]] = {static_cast<std::int32_t>(nextBit), width};
            nextBit += static_cast<std::uint32_t>(width);
            i += tokens[i] == ".flag" ? 1 : 3;
        }
        complaint.clear();
        std::string sectionText;
        tokensSlowly("world", &sectionText);
        tokens = splitSlowly(sectionText, nullptr);
        TokenList included;
        for (std::size_t i = 0; i < tokens.size(); ++i) {
            printed += upToNul(tokens[i]) + "_";
            if (tokens[i] != "include") continue;
            std::string path = "generated/" + upToNul(tokens[i + 1]);
            std::replace(path.begin(), path.end(), '\\', '/');
            for (const std::string& token : tokensSlowly(path)) included.push_back(token);
        }
        for (std::size_t start = 0; start < included.size(); ++start) {  // of a statement
            const std::size_t name = start;
            double sum = 0;
            for (; included[start] != ";"; ++start) {
                if (start >= name + 2) addSlowly(sum, included[start]);
            }
            if (start > name) worldFlags[included[name]] = {static_cast<std::int32_t>(sum), 1};
        }
        complaint = "generateSaveGame collectableids.asm file problem!\n";
        tokens = tokensSlowly("ids");
        for (std::size_t i = 0; i < tokens.size(); ++i) {
            if (tokens[i] == "=") ids[i == 0 ? "" : tokens[i - 1]] = std::stoi(tokens[i + 1]);
        }
    } catch (const std::exception&) {
        return "1" + printed + complaint +
               "problem loading flags files; flagsFileName=<flags>, asmWorldFlags=<world>, collectableIds=<ids>\n";
    }
    if (ids != collectableTable) return "other collectable ids";
    std::erase_if(worldFlags, [](const auto& entry) { return entry.first.find("WORLDFLAG_") != 0; });
    DiscSavegame discs[2]{};
    readFile("data").copy(reinterpret_cast<char*>(discs), sizeof discs);
    for (const DiscSavegame& disc : discs) {
        printed += &disc == discs ? ">>>DISC2 SAVEGAME CONTENTS:\n" : "\n>>>DISC3 SAVEGAME CONTENTS:\n";
        printed += captured([&] { printSavegame(disc); });
        printed +=
            ">>gameflags:\n" + dumpSlowly(disc, gameFlags, 256) + ">>worldflags:\n" + dumpSlowly(disc, worldFlags, 0);
    }
    return "0" + printed;
}

}  // namespace stashkeep
