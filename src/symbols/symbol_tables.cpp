// The global objects, in one file so that they are constructed in this order and destroyed in the reverse order.
#include "symbols/symbol_tables.h"

namespace stashkeep {

const std::string asmSectionBegin = "#AsmSectionBegin";
const std::string asmSectionEnd = "#AsmSectionEnd";
std::string asmSectionText;
FlagTable gameFlagTable;
FlagTable worldFlagTable;
CollectableTable collectableTable;

}  // namespace stashkeep
