// The front end, and the files below everything.
#include <gtest/gtest.h>
#include <sys/stat.h>
#ifdef _WIN32
#include <windows.h>
#endif

#include <thread>

#include "cli/load_file.h"
#include "test_support.h"

namespace stashkeep {
namespace {

TEST(CommandLine, everyWordReachesItsOperationInAnyCaseWhichRefusesWrongCounts) {
    std::string outcomes;
    for (const std::string word : {"extractD64", "IMPLANTD64", "extractreu", "ExtractGeoRAM", "extractneoram",
                                   "extractybn", "extractFBN", "implantreu", "IMPLANTGEORAM", "implantNeoram",
                                   "implantybn", "implantfbn", "check",      "CHECK",         "checkx",
                                   "Foo",        "",           " check",     "extract",       "%S\xC4@Z[`"}) {
        for (std::size_t count = 0; count <= 6; ++count) {
            std::vector<std::string> arguments(count + 1, "no");
            arguments[0] = word;
            outcomes += word + " " + std::to_string(count) + " " + run(arguments);
        }
    }
    EXPECT_EQ(outcomes, readFile(EXPECTED_FOLDER "/words.txt"));
}

struct LoadFile : testing::Test, InFolder {
    static std::string load(const std::string& path) {
        ByteVector bytes;
        const std::string printed = captured([&] { bytes = loadFile(path.c_str()); });
        return std::string(bytes.begin(), bytes.end()) + printed;
    }
};

TEST_F(LoadFile, readsWhatIsAFileAndComplainsOfTheRest) {
    writeFile("empty", "");
    writeFile("Case %s \xC3\xA4", noise(1000, 1));
    std::filesystem::create_directory("folder");
    writeFile("huge", "");
    std::filesystem::resize_file("huge", 0x80000000);  // sparse
    EXPECT_EQ(load("empty"), "");
    EXPECT_EQ(load("Case %s \xC3\xA4"), noise(1000, 1));
    for (const std::string path : {"case %s", "folder", "huge", ""}) {
        EXPECT_EQ(load(path), "File:<" + path + "> not found or not readable.\n");
    }
    EXPECT_TRUE(run({"check", "no", "huge", "no", "no"}).starts_with("1generateSaveGame flags.asm file problem!\n"));
}

TEST_F(LoadFile, readsAPipeUntilItEnds) {
    for (const std::size_t size : {0U, 1U, 0x10000U, 0x30001U}) {
        const std::string bytes = noise(size, 1);
#ifdef _WIN32
        const std::string path = R"(\\.\pipe\stashkeep)";
        const HANDLE pipe = CreateNamedPipeA(path.c_str(), PIPE_ACCESS_OUTBOUND, PIPE_TYPE_BYTE, 1, 0, 0, 0, nullptr);
        std::thread writer([&] {
            DWORD written = 0;
            ConnectNamedPipe(pipe, nullptr);
            WriteFile(pipe, bytes.data(), static_cast<DWORD>(size), &written, nullptr);
            CloseHandle(pipe);
        });
#else
        const std::string path = "pipe" + std::to_string(size);
        ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
        std::thread writer([&] { writeFile(path, bytes); });
#endif
        EXPECT_EQ(load(path), bytes);
        writer.join();
    }
}

}  // namespace
}  // namespace stashkeep
