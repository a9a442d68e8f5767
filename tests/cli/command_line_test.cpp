// The usage text, the command words, and the numbers of files that each command accepts.
#include "test_support.h"

using namespace stashkeep;

struct CommandLine : testing::Test, InFolder {};

TEST_F(CommandLine, findsCommandsAndRefusesOtherNumbersOfFiles) { expectSession("cli/command_line_test.txt"); }
