// Files go through the C library's streams, without buffers: a whole file is one read, and one write back. Media are
// opened for update and not created anew, since what a faulty write leaves has to be a whole medium.
#include "cli/load_file.h"

#ifdef __linux__
#include <malloc.h>
#include <sys/mman.h>
#endif
#include <sys/stat.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <exception>

#include "cli/print_out.h"

namespace stashkeep {
namespace {

constexpr std::size_t fileSizeLimit = 0x80000000;  // bytes; the first size that is too large
constexpr std::size_t leastReadSize = 0x10000;     // bytes asked for at once when a size is unknown

bool isOfKind(const File& file, mode_t kind) {
    struct stat status {};
    return fstat(fileno(file.get()), &status) == 0 && (status.st_mode & S_IFMT) == kind;
}

/// False where there is no place to go to. Some systems claim success at seeking in a pipe.
bool seek(const File& file, int origin) { return !isOfKind(file, S_IFIFO) && fseeko(file.get(), 0, origin) == 0; }

/// The size of a file that can be sought in, in bytes; leaves the position at the start.
std::optional<std::size_t> sizeBySeeking(const File& file) {
    if (!seek(file, SEEK_END)) return std::nullopt;
    const off_t size = ftello(file.get());
    std::rewind(file.get());
    // A position too large for its type is a size too large for us.
    return size < 0 ? fileSizeLimit : static_cast<std::size_t>(size);
}

/// Fills `bytes` from `file`, starting with one read of the size that `bytes` has and enlarging it
/// until the file ends. False when reading fails or when the size limit is reached.
template <typename Bytes>
bool readToEnd(const File& file, Bytes& bytes) {
    std::size_t count = 0;
    do {
        if (count == bytes.size()) bytes.resize(std::clamp(count * 2, leastReadSize, fileSizeLimit));
        count += std::fread(bytes.data() + count, 1, bytes.size() - count, file.get());
    } while (count == bytes.size() && count < fileSizeLimit);
    bytes.resize(count);
    return count < fileSizeLimit && std::ferror(file.get()) == 0;
}

/// Tells the system that the `size` bytes of memory from `start` on are going to be filled. Where it can
/// then provide them in large pages, that takes a fraction of the time.
void hintLargePages([[maybe_unused]] void* start, [[maybe_unused]] std::size_t size) {
#ifdef MADV_HUGEPAGE
    constexpr std::size_t largePage = 0x200000;  // bytes, and its alignment
    // Moves the start to the first large page, and shortens the size by as much.
    if (std::align(largePage, largePage, start, size) == nullptr) return;
    static_cast<void>(madvise(start, size / largePage * largePage, MADV_HUGEPAGE));
#endif
}

bool readWhole(const File& file, ByteVector& bytes) {
    const std::optional<std::size_t> size = sizeBySeeking(file);
    if (!size) return readToEnd(file, bytes);
    if (*size >= fileSizeLimit) return false;
    bytes.reserve(*size);
    hintLargePages(bytes.data(), *size);
    bytes.resize(*size);
    // A file that has shrunk meanwhile leaves zeros behind; one that fails must not.
    readBytes(file, bytes.data(), bytes.size());
    return std::ferror(file.get()) == 0;
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
        ByteVector bytes;
        const File file = openFile(path, "rb");
        if (file && readWhole(file, bytes)) return bytes;
    } catch (const std::exception&) {  // no memory: answered like a file that cannot be opened
    }
    printOut("File:<%s> not found or not readable.\n", path);
    return {};
}

std::optional<std::string> readText(const File& file) {
    // One byte more than the size lets the first read meet the end of the file.
    std::string text;
    const std::size_t size = sizeBySeeking(file).value_or(0);
    if (size >= fileSizeLimit) return std::nullopt;
    growHeap(size + 1);
    text.resize(size + 1);
    if (!readToEnd(file, text)) return std::nullopt;
    return text;
}

void growHeap([[maybe_unused]] std::size_t size) {
#ifdef M_TRIM_THRESHOLD
    constexpr int usualMappings = 65'536;  // the C library's own limit of pieces of memory outside the heap
    mallopt(M_TRIM_THRESHOLD, -1);         // what has been freed stays
    mallopt(M_MMAP_MAX, 0);                // from the heap itself, whatever the size
    void* const room = std::malloc(size);
    mallopt(M_MMAP_MAX, usualMappings);
    if (room != nullptr) hintLargePages(room, size);
    std::free(room);
#endif
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
