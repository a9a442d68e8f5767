#include "symbols/symbol_tables.h"

namespace stashkeep {

const std::string asmSectionBegin = "#AsmSectionBegin";
const std::string asmSectionEnd = "#AsmSectionEnd";
std::string asmSectionText;
FlagTable gameFlagTable;
FlagTable worldFlagTable;
CollectableTable collectableTable;

}  // namespace stashkeep
