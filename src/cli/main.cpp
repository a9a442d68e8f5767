// The entry point, on its own so that everything else can be linked into the tests.
#include "cli/command_line.h"

int main(int argumentCount, char* arguments[]) { return stashkeep::runCommandLine(argumentCount, arguments); }
