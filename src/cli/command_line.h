// The front end: finds the operation for a command word and runs it.
#pragma once

namespace stashkeep {

/// Runs one command. Entry 0 of `arguments` is the program's name, entry 1 the command word in any
/// case, the rest are its file names. If `argumentCount` is below 3, prints the banner and the usage
/// text; otherwise prints the warning line, without a line break, and runs the command. Returns the
/// exit status: that of the command, or 0 after the usage text or for an unknown command word.
[[nodiscard]] int runCommandLine(int argumentCount, const char* const* arguments);

}  // namespace stashkeep
