// Opening files, reading them whole, and writing media back in place.
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

/// Opens the file at `path` in one of fopen's modes. The stream is unbuffered, so each write is one
/// system call. Empty if the file cannot be opened; a folder always counts as such.
[[nodiscard]] File openFile(const char* path, const char* mode);

/// Reads up to `size` bytes into `bytes`; bytes beyond the end of the file stay unchanged. After a
/// read error, the file counts as ended: later calls read nothing. Neither is reported.
void readBytes(const File& file, void* bytes, std::size_t size);

/// Writes `size` bytes; a failure is not reported.
void writeBytes(const File& file, const void* bytes, std::size_t size);

/// The whole file at `path`: as many bytes as seeking to its end says, or all up to EOF if it is not
/// seekable (a pipe). If the file cannot be opened or read, is 2 GiB or longer, or does not fit into
/// memory, prints "File:<path> not found or not readable." and returns an empty vector.
[[nodiscard]] ByteVector loadFile(const char* path);

/// The whole text file at `path`, read to EOF. Empty if it cannot be opened or read, or is 2 GiB or
/// longer. Throws std::bad_alloc or std::length_error when out of memory.
[[nodiscard]] std::optional<std::string> readText(const char* path);

/// Overwrites the existing file at `path` with `bytes`, from the start and with one write. The file
/// is never truncated: if the write is interrupted, each byte of the file is the old or the new one.
/// Prints "File:<path> not creatable." if the file cannot be opened for writing or is not seekable;
/// a failed write is not reported.
void rewriteFile(const char* path, const ByteVector& bytes);

}  // namespace stashkeep
