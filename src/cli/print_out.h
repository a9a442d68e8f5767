// The one way to the console: everything that the program prints goes through here. The complaint that all operations
// share stands here, too.
#pragma once

namespace stashkeep {

/// Formats its arguments as printf does and writes the result to standard output. Adds no line
/// break of its own; a failure to write is not reported.
[[gnu::format(printf, 1, 2)]] void printOut(const char* format, ...);

/// Prints `usage` (a command's usage line or lines, each with its line break) and the complaint
/// that follows it. Returns the exit status for it, 1.
[[nodiscard]] int refuseArgumentCount(const char* usage);

}  // namespace stashkeep
