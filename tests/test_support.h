// Shared by tests and fuzz targets: a scratch folder, files in it, and commands run in this process.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "cli/command_line.h"

namespace stashkeep {

inline std::string readFile(const std::string& path, std::ios::openmode mode = std::ios::binary) {
    std::ostringstream bytes;
    bytes << std::ifstream(path, mode).rdbuf();
    return bytes.str();
}

inline void writeFile(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

/// `size` bytes without an obvious pattern, different for each `seed`.
inline std::string noise(std::size_t size, unsigned seed) {
    std::string bytes(size, '\0');
    for (unsigned i = 0; i < size; ++i) bytes[i] = static_cast<char>((i + seed) * (i + 77) * 2654435761U >> 24);
    return bytes;
}

/// What `call` prints.
inline std::string captured(const std::function<void()>& call) {
    testing::internal::CaptureStdout();
    call();
    return testing::internal::GetCapturedStdout();
}

/// Runs "stashkeep ARGUMENTS...". Returns the exit status as a digit, and what is printed after the warning.
inline std::string run(const std::vector<std::string>& arguments) {
    const std::string warning = "Be aware that this tool can have conflicting effects on different Zarnis builds!";
    std::vector<const char*> entries{"stashkeep"};
    for (const std::string& argument : arguments) entries.push_back(argument.c_str());
    int status = 0;
    const std::string printed =
        captured([&] { status = runCommandLine(static_cast<int>(entries.size()), entries.data()); });
    return std::to_string(status) + (printed.starts_with(warning) ? printed.substr(warning.size()) : "?" + printed);
}

/// Compares with a file of tests/expected/, or writes it anew if UPDATE_EXPECTED is set.
inline void expectOutput(const std::string& name, const std::string& actual) {
    const std::string path = TESTS_FOLDER "/expected/" + name;
    if (std::getenv("UPDATE_EXPECTED") != nullptr) writeFile(path, actual);
    EXPECT_EQ(actual, readFile(path));
}

/// Creates an empty scratch folder and makes it the current one.
struct InFolder {
    InFolder() {
        std::filesystem::remove_all(folder);  // an aborted process of this number may have left one
        std::filesystem::create_directory(folder);
        std::filesystem::current_path(folder);
    }
    ~InFolder() {
        std::filesystem::current_path(folder.parent_path());
        std::filesystem::remove_all(folder);
    }
    std::filesystem::path folder = std::filesystem::temp_directory_path() / ("stashkeep" + std::to_string(getpid()));
};

}  // namespace stashkeep
