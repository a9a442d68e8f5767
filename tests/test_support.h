// What the tests share: a folder of their own, files in it, and runs of the program in-process.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace stashkeep::tests {

inline const std::string warning = "Be aware that this tool can have conflicting effects on different Zarnis builds!";

struct Outcome {
    int status;
    std::string printed;
    bool operator==(const Outcome&) const = default;
};

/// Runs the command line "stashkeep ARGUMENTS..." in this process.
Outcome run(const std::vector<std::string>& arguments);

/// The same, without the rights that root has over files.
Outcome runUnprivileged(const std::vector<std::string>& arguments);

std::string readFile(const std::filesystem::path& path);
void writeFile(const std::filesystem::path& path, std::string_view bytes);

/// `size` bytes without an obvious pattern, other ones for every `seed`.
std::string noise(std::size_t size, unsigned seed);

/// A test that works in an empty folder of its own.
class InFolder : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;
};

}  // namespace stashkeep::tests
