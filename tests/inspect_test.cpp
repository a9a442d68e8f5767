// The whole output of the check command; fuzz/check.cpp compares the flags of any sources.
#include <numeric>

#include "symbols/symbol_tables.h"
#include "test_support.h"

using namespace stashkeep;

struct Check : testing::Test, InFolder {};

TEST_F(Check, printsEveryFieldItemAndFlagOfBothDiscs) {
    std::string data = noise(1024, 5);  // a value of its own for every field
    for (char slot = 0; slot < 24; ++slot) data[static_cast<std::size_t>(296 + slot)] = slot;
    for (char slot = 0; slot < 20; ++slot) data[static_cast<std::size_t>(256 + slot)] = static_cast<char>(24 + slot);
    data.replace(512 + 256, 3, "\x2C\x2D\xFF");        // item ids at the end of the table and beyond
    data.replace(276, 2, std::string("\x00\xFF", 2));  // the least and the most items
    data.replace(476, 2, std::string("\x07\x00", 2)).replace(512 + 476, 2, "\x01\xC8");  // savegameid
    data.replace(512 + 346, 12, "\1\2\3\xC8\4\5\6\7\x8\x9\xA\xB");  // small fields, and a large inventoryCount
    data[349] = 23;                                                 // inventoryCount: one slot not in use
    const auto checksum = [&](std::size_t first, std::size_t last) {
        data[last] = std::accumulate(&data[first], &data[last], '\0', std::bit_xor<>());
    };
    checksum(0, 221);
    checksum(256, 357);
    checksum(512, 512 + 220);  // so that the checksum of disc 3, page 0 is 0
    data[512 + 221] = 0;
    writeFile("data", data + "more");
    std::filesystem::create_directory("generated");
    writeFile("flags", ".flag FLAG_a .flag FLAG_Ä\r\n.flags FLAG_Z, 3\r\n");
    writeFile("ids", "COLLECTABLE_ONE = 1\r\n");
    writeFile("world", "#AsmSectionBegin\r\ninclude i\r\n#AsmSectionEnd\r\n");
    writeFile("generated/i", "WORLDFLAG_A = 7 + 2\r\nB = 1\r\n");
    gameFlagTable = worldFlagTable = {};
    expectOutput("check.txt", run({"check", "data", "flags", "ids", "world"}));
    for (const std::size_t size : {0U, 500U, 700U}) {  // missing bytes read as 0
        writeFile("short", data.substr(0, size));
        writeFile("data", data.substr(0, size) + std::string(1024 - size, '\0'));
        EXPECT_EQ(run({"check", "short"}), run({"check", "data"})) << size;
    }
    EXPECT_EQ(run({"check", "data"}).find(">>gameflags"), std::string::npos);
}
