// Savegames between media and data files. Whatever happens, media keep their length, and every byte outside the
// savegame's pages.
#include <array>
#include <cstring>
#include <map>

#include "test_support.h"

namespace stashkeep {
namespace {

std::string notFound(const std::string& path) { return "File:<" + path + "> not found or not readable.\n"; }
std::string noDisc(const std::string& path) { return "File:<" + path + "> not a valid Zarnis 40 tracks d64.\n"; }
std::string noImage(const std::string& path) { return "File:<" + path + "> not a valid Zarnis memory image.\n"; }

struct Transfer : testing::Test, InFolder {
    std::map<std::string, std::string> files;  // as they have to be

    void writeFiles() const {
        for (const auto& [name, bytes] : files) writeFile(name, bytes);
    }
    void expect(const std::vector<std::string>& arguments, const std::string& outcome) const {
        EXPECT_EQ(run(arguments), outcome);
        for (const auto& [name, bytes] : files) EXPECT_TRUE(readFile(name) == bytes) << name << " after " << outcome;
    }
    /// Copies to a medium, at `offset`, what the data file has of page `page` (0 to 3).
    void fillPage(const std::string& medium, std::size_t offset, std::size_t page) {
        const std::string& data = files["data"];
        const std::string bytes = data.size() > 256 * page ? data.substr(256 * page, 256) : "";
        files[medium].replace(offset, bytes.size(), bytes);
    }
};

TEST_F(Transfer, d64ImagesKeepTheSavegameInTwoSectorsOfEachDisc) {
    files = {{"Disc2", noise(0x30000, 2)},
             {"disc 3", noise(0x30000, 3)},
             {"35 tracks", noise(174848, 4)},
             {"errors", noise(0x30300, 5)},
             {"data", "older"}};
    writeFiles();
    expect({"extractd64", "35 tracks", "no", "data"}, "1" + notFound("no") + noDisc("35 tracks"));
    expect({"implantd64", "no", "no", "."}, "1" + notFound("no") + notFound(".") + noDisc("no"));
    expect({"extractd64", "Disc2", "errors", "data"}, "1" + noDisc("errors"));
    expect({"implantd64", "data", "Disc2", "errors"}, "1" + noDisc("errors"));
    expect({"extractd64", "Disc2", "disc 3", "no/no"}, "1File:<no/no> couldn't be created.\n");
    expect({"implantd64", ".", "Disc2", "disc 3"}, "1File:<.> couldn't be opened.\n");

    files["data"].clear();
    for (const std::string disc : {"Disc2", "disc 3"}) {
        files["data"] += files[disc].substr(0, 256) + files[disc].substr(0x400, 256);
    }
    expect({"extractd64", "Disc2", "disc 3", "data"}, "0");
    expect({"implantd64", "data", "Disc2", "disc 3"}, "0");
    for (const std::size_t size : {0U, 600U, 2048U}) {
        files["data"] = noise(size, 9);
        writeFiles();
        for (std::size_t i = 0; i < 4; ++i) fillPage(i < 2 ? "Disc2" : "disc 3", i % 2 * 0x400, i);
        expect({"implantd64", "data", "Disc2", "disc 3"}, "0");
    }
}

struct MemoryImage : Transfer {
    /// An image whose pointers hold `pages`, and an older data file.
    void make(std::size_t size, const std::array<std::uint32_t, 4>& pages) {
        std::string image = noise(size, 7);
        for (std::size_t i = 0; i < 4 && size >= 0x110C; ++i) {
            std::memcpy(&image[std::array{0x900U, 0x908U, 0x1100U, 0x1108U}[i]], &pages[i], 4);
        }
        files = {{"image", image}, {"data", noise(600, 9)}};
        writeFiles();
    }
};

TEST_F(MemoryImage, pointsAtThePagesOfTheSavegame) {
    const std::array<std::uint32_t, 4> pages{0x3000, 0x2F00, 0x500000, 0x110C};
    make(0x500100, pages);
    for (std::size_t i = 0; i < 4; ++i) fillPage("image", pages[i], i);
    expect({"implantreu", "data", "image"}, "0");
    files["data"].clear();
    for (const std::uint32_t page : pages) files["data"] += files["image"].substr(page, 256);
    expect({"extractreu", "image", "data"}, "0");
    expect({"extractreu", "image", "no/no"}, "1File:<no/no> couldn't be created.\n");
}

TEST_F(MemoryImage, isRefusedWhereItsPointersLeadOut) {
    for (const std::array<std::uint32_t, 5>& c : {std::array<std::uint32_t, 5>{0, 0, 0, 0, 0},
                                                  {0x110B, 0, 0, 0, 0},
                                                  {0x110C, 0, 0x100D, 0, 0},
                                                  {0x2000, 0x1F00, 0, 0, 0x1F01},
                                                  {0x2000, 0, 0, 0xFFFFFF00, 0}}) {
        make(c[0], {c[1], c[2], c[3], c[4]});
        expect({"implantreu", "data", "image"}, "1" + noImage("image"));
        expect({"extractreu", "image", "data"}, "1" + noImage("image"));
    }
    expect({"implantreu", "data", "no"}, "1" + notFound("no") + noImage("no"));
    expect({"implantreu", "no data", "image"}, "1" + notFound("no data"));
}

}  // namespace
}  // namespace stashkeep
