// The check command over any files. The input is six of them, separated by bytes of 1: two that may be included, then
// the world flags, the game flags, the collectable ids and the data file.
#include "fuzz/slow_check.h"

using namespace stashkeep;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    static const InFolder folder;
    std::filesystem::create_directory("generated");
    const unsigned char* const end = data + size;
    for (const char* name : {"generated/i", "generated/include", "world", "flags", "ids", "data"}) {
        const unsigned char* const separator = std::find(data, end, 1);
        writeFile(name, std::string(data, separator));
        data = std::min(separator + 1, end);
    }
    writeFile("data", readFile("data") + noise(1024, static_cast<unsigned>(size)));
    gameFlagTable = worldFlagTable = {};
    collectableTable = {};
    const std::string outcome = run({"check", "data", "flags", "ids", "world"});
    if (outcome != checkSlowly()) std::abort();
    return 0;
}
