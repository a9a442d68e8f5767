// The usage text, the command words, and the numbers of files that each command accepts.
#include "test_support.h"

using namespace stashkeep;

TEST(CommandLine, findsCommandsAndRefusesOtherNumbersOfFiles) { expectSession("cli/command_line_test.txt"); }
