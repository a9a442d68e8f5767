// File access through unbuffered C streams: a whole file is read, or written back, with one call.
#include "cli/files.h"

#include <sys/stat.h>

#include <algorithm>
#include <exception>

#include "cli/print_out.h"

namespace stashkeep {
namespace {

constexpr std::size_t fileSizeLimit = 0x80000000;  // bytes; files of this size and more are refused
constexpr std::size_t leastBufferSize = 0x10000;   // bytes, where the size of a file is unknown

bool isOfKind(const File& file, mode_t kind) {
    struct stat status {};
    return fstat(fileno(file.get()), &status) == 0 && (status.st_mode & S_IFMT) == kind;
}

/// False if the file is not seekable. Pipes need a test of their own: on some systems, seeking in
/// one claims to succeed.
bool seek(const File& file, int origin) { return !isOfKind(file, S_IFIFO) && fseeko(file.get(), 0, origin) == 0; }

/// The size of `file` in bytes, or 0 if it is not seekable; leaves the position at the start.
std::size_t sizeBySeeking(const File& file) {
    if (!seek(file, SEEK_END)) return 0;
    const off_t size = ftello(file.get());
    std::rewind(file.get());
    return size < 0 ? fileSizeLimit : static_cast<std::size_t>(size);  // negative: too large for off_t
}

/// Reads `file` to EOF. Empty if it could not be opened, on a read error, and at the size limit.
template <typename Bytes>
std::optional<Bytes> readWhole(const File& file) {
    if (!file) return std::nullopt;
    const std::size_t size = sizeBySeeking(file);
    if (size >= fileSizeLimit) return std::nullopt;
    Bytes bytes;
    bytes.resize(size + 1);  // one byte more, so that the first read reaches EOF
    std::size_t count = std::fread(bytes.data(), 1, bytes.size(), file.get());
    while (count == bytes.size() && count < fileSizeLimit) {
        bytes.resize(std::clamp(count * 2, leastBufferSize, fileSizeLimit));
        count += std::fread(bytes.data() + count, 1, bytes.size() - count, file.get());
    }
    if (count == fileSizeLimit || std::ferror(file.get()) != 0) return std::nullopt;
    bytes.resize(count);
    return bytes;
}

}  // namespace

File openFile(const char* path, const char* mode) {
    File file(std::fopen(path, mode));
    if (file && isOfKind(file, S_IFDIR)) file.reset();
    if (file) static_cast<void>(std::setvbuf(file.get(), nullptr, _IONBF, 0));
    return file;
}

void readBytes(const File& file, void* bytes, std::size_t size) {
    if (std::ferror(file.get()) != 0) return;
    [[maybe_unused]] const std::size_t count = std::fread(bytes, 1, size, file.get());
}

void writeBytes(const File& file, const void* bytes, std::size_t size) {
    [[maybe_unused]] const std::size_t count = std::fwrite(bytes, 1, size, file.get());
}

ByteVector loadFile(const char* path) {
    try {
        if (std::optional<ByteVector> bytes = readWhole<ByteVector>(openFile(path, "rb"))) return *std::move(bytes);
    } catch (const std::exception&) {  // out of memory
    }
    printOut("File:<%s> not found or not readable.\n", path);
    return {};
}

std::optional<std::string> readText(const char* path) { return readWhole<std::string>(openFile(path, "r")); }

void rewriteFile(const char* path, const ByteVector& bytes) {
    const File file = openFile(path, "r+b");
    if (!file || !seek(file, SEEK_SET)) {
        printOut("File:<%s> not creatable.\n", path);
        return;
    }
    writeBytes(file, bytes.data(), bytes.size());
}

}  // namespace stashkeep
