// The entry: hands the arguments on.
#include "cli/command_line.h"

int main(int argumentCount, char* arguments[]) { return stashkeep::runCommandLine(argumentCount, arguments); }
