// Defined in one file, so that they are built in this order, and destroyed in the reverse one.
#include "symbols/symbol_tables.h"

namespace stashkeep {

const std::string asmSectionBegin = "#AsmSectionBegin";
const std::string asmSectionEnd = "#AsmSectionEnd";
std::string asmSectionText;
FlagTable gameFlagTable;
FlagTable worldFlagTable;
CollectableTable collectableTable;

}  // namespace stashkeep
