// A thin wrapper around vprintf, the one place that writes to standard output.
#include "cli/print_out.h"

#include <cstdarg>
#include <cstdio>

namespace stashkeep {

void printOut(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    static_cast<void>(std::vprintf(format, arguments));
    va_end(arguments);
}

int refuseArgumentCount(const char* usage) {
    printOut("%swrong argument count.\n", usage);
    return 1;
}

}  // namespace stashkeep
