// The entry, kept apart so that all the rest can be linked into the tests.
#include "cli/command_line.h"

int main(int argumentCount, char* arguments[]) { return stashkeep::runCommandLine(argumentCount, arguments); }
