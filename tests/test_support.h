// Shared by tests and fuzz targets: a scratch folder, files in it, and commands run in this process.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "cli/command_line.h"

namespace stashkeep {

/// A page that is filled with one byte.
inline std::string page(char byte) { return std::string(256, byte); }  // NOLINT(modernize-return-braced-init-list)

inline void writeFile(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

inline std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << path;
    return {std::istreambuf_iterator(file), {}};
}

/// Where and how the file at `path` first differs from `expected`; empty if it does not.
inline std::string difference(const std::string& path, const std::string& expected) {
    const std::string actual = readFile(path);
    if (actual == expected) return "";
    std::size_t at = 0;
    while (at < std::min(actual.size(), expected.size()) && actual[at] == expected[at]) ++at;
    return path + " has " + testing::PrintToString(actual.substr(at, 16)) + " at byte " + std::to_string(at) +
           ", expected is " + testing::PrintToString(expected.substr(at, 16));
}

/// What `call` prints. `call` must not assert: the message would be captured as well.
inline std::string captured(const auto& call) {
    testing::internal::CaptureStdout();
    call();
    return testing::internal::GetCapturedStdout();
}

/// Runs "stashkeep ARGUMENTS...". Returns what it prints after the warning, and then "exit status N".
inline std::string run(const std::vector<std::string>& arguments) {
    const std::string warning = "Be aware that this tool can have conflicting effects on different Zarnis builds!";
    std::vector<const char*> entries{"stashkeep"};
    for (const std::string& argument : arguments) entries.push_back(argument.c_str());
    int status = 0;
    std::string printed = captured([&] { status = runCommandLine(static_cast<int>(entries.size()), entries.data()); });
    printed = printed.starts_with(warning) ? printed.substr(warning.size()) : "(no warning)\n" + printed;
    return printed + "exit status " + std::to_string(status);
}

inline std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

/// The text with these symbols replaced by the bytes that they stand for.
inline std::string withoutSymbols(std::string text) {
    const std::vector<std::pair<std::string, char>> symbols{{"⏎", '\n'}, {"␍", '\r'}, {"⇥", '\t'},
                                                            {"␋", '\v'}, {"␌", '\f'}, {"␀", '\0'}};
    for (const auto& [symbol, byte] : symbols) {
        for (std::size_t i; (i = text.find(symbol)) != std::string::npos;) text.replace(i, symbol.size(), 1, byte);
    }
    return text;
}

/// Compares a console session in tests/ with what its commands print now. "$ stashkeep ARGUMENT..." and "$ write NAME
/// TEXT", which makes a file, are the commands. Lines that begin with "#" are comments.
inline void expectSession(const std::string& file) {
    const std::string path = PROJECT_FOLDER "/tests/" + file;
    const std::vector<std::string> expected = linesOf(readFile(path));
    std::vector<std::string> actual;
    for (const std::string& line : expected) {
        if (line.starts_with("#") || line.starts_with("$ ")) actual.push_back(line);
        if (!line.starts_with("$ ")) continue;
        std::istringstream words(line.substr(2));
        std::string command;
        std::string name;
        std::string text;
        words >> command;
        if (command == "stashkeep") {
            const std::vector<std::string> arguments{std::istream_iterator<std::string>(words), {}};
            for (const std::string& printed : linesOf(run(arguments))) actual.push_back(printed);
        } else if (command == "write" && words >> name && std::getline(words.ignore(), text)) {
            writeFile(name, withoutSymbols(text));
        } else {
            ADD_FAILURE() << "Not a command: " << line << "\nin " << path;
        }
    }
    if (std::getenv("UPDATE_EXPECTED") != nullptr && actual != expected) {
        std::ofstream stream(path, std::ios::binary);
        for (const std::string& line : actual) stream << line << '\n';
        GTEST_SKIP() << path << " was written anew. Review the difference: git diff";
    }
    for (std::size_t i = 0; i < std::max(actual.size(), expected.size()); ++i) {
        ASSERT_EQ(i < actual.size() ? actual[i] : "(end)", i < expected.size() ? expected[i] : "(end)")
            << "in line " << i + 1 << " of " << path << "\nTo write it anew: UPDATE_EXPECTED=1 ctest --preset dev";
    }
}

/// The rows of the table in docs/formats.md with this header: the first cell without backticks, the second, and the
/// place and the line itself, which show what failed.
inline std::vector<std::array<std::string, 3>> tableOfFormats(const std::string& header) {
    const std::vector<std::string> lines = linesOf(readFile(PROJECT_FOLDER "/docs/formats.md"));
    std::vector<std::array<std::string, 3>> rows;
    for (auto line = std::find(lines.begin(), lines.end(), header); line != lines.end() && !line->empty(); ++line) {
        if (*line == header || *line == "|---|---|") continue;
        const std::string row = withoutSymbols(*line);
        const std::string place = "docs/formats.md:" + std::to_string(line - lines.begin() + 1) + ": " + *line;
        const std::size_t end = row.find("` | ");
        if (row.starts_with("| `") && end != std::string::npos && row.ends_with(" |")) {
            rows.push_back({row.substr(3, end - 3), row.substr(end + 4, row.size() - end - 6), place});
        } else {
            ADD_FAILURE() << "Not a row like \"| `text` | result |\": " << place;
        }
    }
    EXPECT_FALSE(rows.empty()) << header;
    return rows;
}

/// Creates a scratch folder that did not exist, and makes it the current one.
struct InFolder {
    InFolder() {
        std::random_device number;
        do folder = std::filesystem::temp_directory_path() / ("stashkeep" + std::to_string(number()));
        while (!std::filesystem::create_directory(folder));
        std::filesystem::create_directory(folder / "generated");
        std::filesystem::current_path(folder);
    }
    ~InFolder() {
        std::filesystem::current_path(folder.parent_path());
        std::filesystem::remove_all(folder);
    }
    std::filesystem::path folder;
};

}  // namespace stashkeep
