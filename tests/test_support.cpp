#include "test_support.h"

#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <random>

#include "cli/command_line.h"

namespace stashkeep::tests {

namespace fs = std::filesystem;

Outcome run(const std::vector<std::string>& arguments) {
    std::vector<const char*> vector{"stashkeep"};
    for (const std::string& argument : arguments) vector.push_back(argument.c_str());
    testing::internal::CaptureStdout();
    const int status = runCommandLine(static_cast<int>(vector.size()), vector.data());
    return {status, testing::internal::GetCapturedStdout()};
}

Outcome runUnprivileged(const std::vector<std::string>& arguments) {
    const uid_t user = geteuid();
    constexpr uid_t nobody = 65534;
    if (user == 0) {
        EXPECT_EQ(seteuid(nobody), 0);
    }
    Outcome outcome = run(arguments);
    EXPECT_EQ(seteuid(user), 0);
    return outcome;
}

std::string readFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void writeFile(const fs::path& path, std::string_view bytes) { std::ofstream(path, std::ios::binary) << bytes; }

std::string noise(std::size_t size, unsigned seed) {
    std::minstd_rand random(seed + 1);
    std::string bytes(size, '\0');
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random() >> 8); });
    return bytes;
}

void InFolder::SetUp() {
    const fs::path folder = fs::temp_directory_path() / ("stashkeep-test-" + std::to_string(getpid()));
    fs::create_directory(folder);
    fs::current_path(folder);
}

void InFolder::TearDown() {
    const fs::path folder = fs::current_path();
    fs::current_path(folder.parent_path());
    fs::remove_all(folder);
}

}  // namespace stashkeep::tests
