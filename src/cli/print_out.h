// Console output: everything that the program prints goes through printOut.
#pragma once

namespace stashkeep {

/// Formats its arguments as printf does and writes the result to standard output. Adds no line
/// break; a failed write is not reported.
[[gnu::format(printf, 1, 2)]] void printOut(const char* format, ...);

/// Prints `usage`, which is one or more lines, each with its line break, and then
/// "wrong argument count.". Returns the exit status 1.
[[nodiscard]] int refuseArgumentCount(const char* usage);

}  // namespace stashkeep
