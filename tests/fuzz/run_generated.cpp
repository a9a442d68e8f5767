// Runs a fuzz target without a fuzzer, on its seeds and on inputs generated from them, the same ones in every run:
// PROGRAM SEEDS_FOLDER COUNT. Prints the input on which the target aborts.
#include <csignal>
#include <iostream>
#include <random>

#include "test_support.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size);

static std::string input;

int main(int /*argumentCount*/, char* arguments[]) {
    std::signal(SIGABRT, [](int /*signal*/) { std::cerr << "failed on " << testing::PrintToString(input) << "\n"; });
    std::vector<std::string> seeds;
    for (const auto& file : std::filesystem::directory_iterator(arguments[1])) {
        seeds.push_back(stashkeep::readFile(file.path().string()));
    }
    std::sort(seeds.begin(), seeds.end());  // a folder has no order of its own
    std::mt19937 random;                    // NOLINT(cert-msc*): the same numbers in every run
    for (std::size_t i = 0; i < seeds.size() + std::stoul(arguments[2]); ++i) {
        input = seeds[i % seeds.size()];
        for (std::size_t edits = i < seeds.size() ? 0 : 1 + random() % 8; edits > 0; --edits) {
            const std::string& other = seeds[random() % seeds.size()];
            const std::size_t from = random() % other.size();
            const std::size_t to = random() % (input.size() + 1);
            input.replace(to, random() % 16, other.substr(from, 32));
            input += static_cast<char>(random() % 26);  // 0 to 25: a byte 26 ends a text on Windows
        }
        LLVMFuzzerTestOneInput(reinterpret_cast<const unsigned char*>(input.data()), input.size());
    }
    return 0;
}
