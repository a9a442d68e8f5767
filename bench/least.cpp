// A program to compare with: the least that loads a file as loadFile has to, into a zeroed vector with one read.
#include <cstdio>
#include <vector>

int main(int /*argumentCount*/, char* arguments[]) {
    std::FILE* const file = std::fopen(arguments[1], "rb");
    if (file == nullptr) return 1;
    std::setvbuf(file, nullptr, _IONBF, 0);
    std::fseek(file, 0, SEEK_END);
    std::vector<char> bytes(static_cast<std::size_t>(std::ftell(file)));
    std::fseek(file, 0, SEEK_SET);
    return std::fread(bytes.data(), 1, bytes.size(), file) == bytes.size() ? 0 : 1;
}
