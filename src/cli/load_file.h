// Whole files: opening them, reading them into memory, and writing media back over themselves; and what makes memory
// for large ones quick to get.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace stashkeep {

using ByteVector = std::vector<std::uint8_t>;

struct FileCloser {
    void operator()(std::FILE* file) const noexcept { static_cast<void>(std::fclose(file)); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

/// Opens the file at `path` with one of fopen's modes, unbuffered: each read and write that the
/// caller makes is one of the system's. Empty when it cannot be opened; a folder never can.
[[nodiscard]] File openFile(const char* path, const char* mode);

/// Reads up to `size` bytes to `bytes`; what the file does not hold is left as it was, unnoticed. A
/// file ends where reading fails, so that nothing moves up into the place of what could not be read.
void readBytes(const File& file, void* bytes, std::size_t size);

/// Writes `size` bytes; a failure goes unnoticed.
void writeBytes(const File& file, const void* bytes, std::size_t size);

/// The whole file at `path`. What cannot be sought in, such as a pipe, is read until it ends.
/// Where the file cannot be opened or read, is 2 GiB or longer, or does not fit into memory,
/// prints "File:<path> not found or not readable." and returns an empty vector.
[[nodiscard]] ByteVector loadFile(const char* path);

/// All of an open file; nothing when reading fails or when there are 2 GiB or more.
/// Throws std::bad_alloc when it does not fit into memory.
[[nodiscard]] std::optional<std::string> readText(const File& file);

/// Makes the heap ready for `size` bytes more. Where the system can provide them in large pages, filling
/// them takes a fraction of the time. Only a hint: without such room, nothing happens. From then on, what
/// the heap has grown by stays with the process.
void growHeap(std::size_t size);

/// Writes `bytes` over the start of the existing file at `path` with one write. The file is never
/// cut short: whatever interrupts the write, each of its bytes is the old one or the new one.
/// Prints "File:<path> not creatable." where it cannot be opened for writing, or where what is
/// written cannot be kept (a pipe); a write that fails is not reported.
void rewriteFile(const char* path, const ByteVector& bytes);

}  // namespace stashkeep
