// Which files are not readable; faults.sh tests what happens when the system fails.
#include "test_support.h"

using namespace stashkeep;

struct Files : testing::Test, InFolder {};

TEST_F(Files, foldersMissingFilesAndHugeOnesAreNotReadable) {
    for (const char* path : {"empty", "2GiB", "4GiB_and_a_disc"}) writeFile(path, "");
    std::filesystem::resize_file("2GiB", 0x80000000);  // sparse
    std::filesystem::resize_file("4GiB_and_a_disc", 0x100030000);
    expectSession("cli/files_test.txt");
}
