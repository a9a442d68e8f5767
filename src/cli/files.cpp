// File access through unbuffered C streams, so that each call of fread and fwrite goes straight to the system.
#include "cli/files.h"

#include <sys/stat.h>

#include <algorithm>
#include <exception>
#include <utility>

#include "cli/print_out.h"

namespace stashkeep {
namespace {

constexpr std::size_t fileSizeLimit = 0x80000000;  // bytes; files of this size and more are refused
constexpr std::size_t leastBufferSize = 0x10000;   // bytes; a buffer that is too small grows to at least this

bool isOfKind(const File& file, mode_t kind) {
    struct stat status = {};
    return fstat(fileno(file.get()), &status) == 0 && (status.st_mode & S_IFMT) == kind;
}

/// False if the file is not seekable. Pipes need a test of their own: on some systems, seeking in
/// one claims to succeed.
bool seek(const File& file, int origin) { return !isOfKind(file, S_IFIFO) && fseeko(file.get(), 0, origin) == 0; }

/// The size of `file` in bytes, or fileSizeLimit if it has more or its size cannot be told; empty if
/// it is not seekable. Leaves the position at the start; if that fails, the size cannot be told either.
std::optional<std::size_t> sizeBySeeking(const File& file) {
    if (!seek(file, SEEK_END)) return std::nullopt;
    const off_t size = ftello(file.get());
    // Compared as off_t, which has 64 bits on 32-bit systems too.
    if (size < 0 || size > off_t{fileSizeLimit} || !seek(file, SEEK_SET)) return fileSizeLimit;
    return static_cast<std::size_t>(size);
}

/// Fills `bytes` from `file`, enlarges them until EOF or until there are `limit`, and cuts them to what
/// was read. False on a read error, and if they have reached the file size limit.
template <typename Bytes>
bool readUpTo(std::size_t limit, const File& file, Bytes& bytes) {
    std::size_t count = 0;
    for (;;) {
        const std::size_t room = bytes.size() - count;
        const std::size_t added = std::fread(bytes.data() + count, 1, room, file.get());
        count += added;
        if (added < room || count == limit) break;  // nothing is read after EOF or an error
        bytes.resize(std::min(std::max(count * 2, leastBufferSize), limit));
    }
    bytes.resize(count);
    return count < fileSizeLimit && std::ferror(file.get()) == 0;
}

/// All bytes of `file`. If it is seekable, as many as its size; should it have become shorter since,
/// the missing bytes are 0. Otherwise all up to EOF. Empty if it was not opened, on a read error, at
/// the size limit, and if out of memory.
std::optional<ByteVector> readMedium(const File& file) try {
    if (!file) return std::nullopt;
    const std::optional<std::size_t> size = sizeBySeeking(file);
    if (size >= fileSizeLimit) return std::nullopt;
    ByteVector bytes(size.value_or(0));
    if (!readUpTo(size.value_or(fileSizeLimit), file, bytes)) return std::nullopt;
    bytes.resize(size.value_or(bytes.size()));
    return bytes;
} catch (const std::exception&) {
    return std::nullopt;
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
    if (std::optional<ByteVector> bytes = readMedium(openFile(path, "rb"))) return *std::move(bytes);
    printOut("File:<%s> not found or not readable.\n", path);
    return {};
}

std::optional<std::string> readText(const char* path) {
    const File file = openFile(path, "r");
    const std::size_t size = file ? sizeBySeeking(file).value_or(0) : fileSizeLimit;
    if (size >= fileSizeLimit) return std::nullopt;
    std::string text(size + 1, '\0');  // one byte more, so that the first read reaches EOF
    if (!readUpTo(fileSizeLimit, file, text)) return std::nullopt;
    return text;
}

void rewriteFile(const char* path, const ByteVector& bytes) {
    const File file = openFile(path, "r+b");
    if (!file || !seek(file, SEEK_SET)) {
        printOut("File:<%s> not creatable.\n", path);
        return;
    }
    writeBytes(file, bytes.data(), bytes.size());
}

}  // namespace stashkeep
