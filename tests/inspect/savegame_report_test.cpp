// The limits of what the report shows; the example's report in expected/check.txt has every field and item.
#include "inspect/savegame_report.h"

#include <cstring>

#include "test_support.h"

using namespace stashkeep;

TEST(SavegameReport, showsTheGreatestValuesAndTheStoredChecksum) {
    DiscSavegame savegame;
    std::memset(&savegame, 0xff, sizeof savegame);  // the XOR of an odd number of these bytes is 0xff
    savegame.checkSumPage0 = 0x0a;
    const std::string report = captured([&] { printSavegame(savegame); });
    for (const char* line :
         {"\nmoney:<2805>\n", "\ncheckSumPage1:ff valid:true\n", "\ncheckSumPage0:0a valid:false\n",
          "\nsavegameid:ffff\n", "\ninventory: <255 items>\n", "\n23_item:255<undefined> count:256\n"}) {
        EXPECT_NE(report.find(line), std::string::npos) << "there is no line " << line << "in this report:" << report;
    }
}
