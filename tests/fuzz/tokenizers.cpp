// Any text: the tokenizers agree with the slow ones.
#include <cstdlib>

#include "fuzz/slow_tokenizer.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    if (!stashkeep::isSplitAsSlowly({data, data + size})) std::abort();
    return 0;
}
