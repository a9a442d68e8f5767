// What tests and fuzz targets share: a folder of their own, files in it, and whole commands run in this process.
#pragma once

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "cli/command_line.h"

namespace stashkeep {

inline std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void writeFile(const std::string& path, std::string_view bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

/// `size` bytes without an obvious pattern, other ones for every `seed`.
inline std::string noise(std::size_t size, unsigned seed) {
    std::minstd_rand random(seed + 1);
    std::string bytes(size, '\0');
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random() >> 8); });
    return bytes;
}

/// What `call` prints.
template <typename Call>
std::string captured(Call call) {
    // By a name of its own, since Windows at times gives two programs the same temporary file.
    const auto path = std::filesystem::temp_directory_path() / ("printed" + std::to_string(getpid()));
    std::FILE* const file = std::fopen(path.string().c_str(), "w+b");
    std::fflush(stdout);
    const int console = dup(fileno(stdout));
    dup2(fileno(file), fileno(stdout));
    call();
    std::fflush(stdout);
    dup2(console, fileno(stdout));
    close(console);
    std::string text(static_cast<std::size_t>(std::ftell(file)), '\0');
    std::rewind(file);
    text.resize(std::fread(text.data(), 1, text.size(), file));
    std::fclose(file);
    std::filesystem::remove(path);
    return text;
}

/// Runs the command line "stashkeep ARGUMENTS...". Returns its exit status as a digit, and then what it prints behind
/// the warning line.
inline std::string run(const std::vector<std::string>& arguments) {
    const std::string warning = "Be aware that this tool can have conflicting effects on different Zarnis builds!";
    std::vector<const char*> vector{"stashkeep"};
    for (const std::string& argument : arguments) vector.push_back(argument.c_str());
    int status = 0;
    const std::string printed =
        captured([&] { status = runCommandLine(static_cast<int>(vector.size()), vector.data()); });
    const bool isWarned = printed.starts_with(warning);
    return std::to_string(status) + (isWarned ? printed.substr(warning.size()) : "no warning:" + printed);
}

/// Makes an empty folder the current one.
struct InFolder {
    InFolder() {
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
