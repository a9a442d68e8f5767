// The front end: from the command word to the operation that it names.
#pragma once

namespace stashkeep {

/// Runs the command that `arguments` name; entry 0 is the program, entry 1 the command word in any
/// case, the rest its file names. Prints the banner and the usage text when `argumentCount` is
/// below 3, and otherwise the warning line (without a line break) and what the command prints.
/// Returns the exit status: the command's own, or 0 for the usage text and an unknown command.
[[nodiscard]] int runCommandLine(int argumentCount, const char* const* arguments);

}  // namespace stashkeep
