// The limits of what the report shows; the example's report in expected/check.txt has every field and item.
#include "inspect/savegame_report.h"

#include <cstring>

#include "test_support.h"

using namespace stashkeep;

TEST(SavegameReport, showsTheGreatestBytesAndTheStoredChecksum) {
    DiscSavegame savegame;
    std::memset(&savegame, 0xff, sizeof savegame);  // the XOR of an odd number of these bytes is 0xff
    savegame.savegameid = {7, 0};
    savegame.chestItemIds[19] = 128;
    const std::string report = captured([&] { printSavegame(savegame); });
    for (const std::string line :
         {"money:<2805>", "lives:<255>", "inventoryUsing:<$ff>", "maxLives:<255>", "inventoryCount:<255>",
          "weaponFileId:<$ff>", "inventoryCurrentItem:<255>", "savepointId:<255>", "changedisc2flags:<$ff>",
          "activatedWomen:<$ff>", "specialFlags:<$ff>", "validsavegame:<$ff> should be $55",
          "checkSumPage1:ff valid:false", "checkSumPage0:ff valid:true", "savegameid:0007", "inventory: <255 items>",
          "23_item:255<undefined> count:256", "19_item:128<undefined> count:256"}) {
        EXPECT_NE(report.find("\n" + line + "\n"), std::string::npos) << "no line " << line << " in" << report;
    }
}
