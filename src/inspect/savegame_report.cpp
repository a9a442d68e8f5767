// The report, line by line in the order of printing, and the names of the items.
#include "inspect/savegame_report.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "cli/print_out.h"

namespace stashkeep {
namespace {

struct CollectableName {
    const char* name;
    int id;
};

/// The game's items, whatever ids the game's sources define.
constexpr std::array<CollectableName, 45> collectableNames{{
    {"COLLECTABLE_MONEY", 0},
    {"COLLECTABLE_POTION_HEALING", 1},
    {"COLLECTABLE_BASICSWORD", 2},
    {"COLLECTABLE_BOW", 3},
    {"COLLECTABLE_FRUIT", 4},
    {"COLLECTABLE_VILLAGE_ALTAR_STONE", 5},
    {"COLLECTABLE_MANSION_KEY", 6},
    {"COLLECTABLE_HUNTERS_KEY", 7},
    {"COLLECTABLE_DOGGHOST_WHISTLE", 8},
    {"COLLECTABLE_GERDAAMULET", 9},
    {"COLLECTABLE_EREMITPASSPORT", 10},
    {"COLLECTABLE_MAP", 11},
    {"COLLECTABLE_FIRESPELL", 12},
    {"COLLECTABLE_BOATHOOK", 13},
    {"COLLECTABLE_BOMB", 14},
    {"COLLECTABLE_LAMPOFF", 15},
    {"COLLECTABLE_LAMPON", 16},
    {"COLLECTABLE_HAMMER", 17},
    {"COLLECTABLE_FAIRYGLASSEMPTY", 18},
    {"COLLECTABLE_FAIRYGLASS", 19},
    {"COLLECTABLE_FIREWAND", 20},
    {"COLLECTABLE_NET", 21},
    {"COLLECTABLE_SHOVEL", 22},
    {"COLLECTABLE_ARROWS", 23},
    {"COLLECTABLE_BOOMERANG", 24},
    {"COLLECTABLE_ICEWAND", 25},
    {"COLLECTABLE_KNOWNWAYS", 26},
    {"COLLECTABLE_FEATHER", 27},
    {"COLLECTABLE_GLOVE", 28},
    {"COLLECTABLE_CUBE", 29},
    {"COLLECTABLE_PAINTING_DEER", 30},
    {"COLLECTABLE_PACKET_SMUGGLER", 31},
    {"COLLECTABLE_WOMEN_COIN", 32},
    {"COLLECTABLE_DRAGONSCALE", 33},
    {"COLLECTABLE_SCRAGARDAUGHTERBALL", 34},
    {"COLLECTABLE_PILL_SMALL", 35},
    {"COLLECTABLE_PILL_BIG", 36},
    {"COLLECTABLE_HERB1", 37},
    {"COLLECTABLE_HERB2", 38},
    {"COLLECTABLE_HERB3", 39},
    {"COLLECTABLE_HERB4", 40},
    {"COLLECTABLE_HERB5", 41},
    {"COLLECTABLE_BLUE_KEY", 42},
    {"COLLECTABLE_FAIRY_KEY", 43},
    {"COLLECTABLE_EXIT_ICON", 44},
}};

const char* collectableName(std::uint8_t id) {
    const auto* const row = std::find_if(collectableNames.begin(), collectableNames.end(),
                                         [id](const CollectableName& candidate) { return candidate.id == id; });
    return row == collectableNames.end() ? "undefined" : row->name;
}

const char* trueOrFalse(bool value) { return value ? "true" : "false"; }

/// `count` is the stored one: the number of items, minus one. Prints no line break.
void printSlot(std::size_t slot, std::uint8_t id, std::uint8_t count) {
    printOut("%d_item:%d<%s> count:%d", static_cast<int>(slot), id, collectableName(id), count + 1);
}

}  // namespace

void printSavegame(const DiscSavegame& savegame) {
    printOut("\n----------\n");
    printOut("money:<%d>\n", money(savegame));
    printOut("lives:<%d>\n", savegame.lives);
    printOut("inventoryUsing:<$%02x>\n", savegame.inventoryUsing);
    printOut("maxLives:<%d>\n", savegame.maxLives);
    printOut("inventoryCount:<%d>\n", savegame.inventoryCount);
    printOut("weaponFileId:<$%02x>\n", savegame.weaponFileId);
    printOut("inventoryCurrentItem:<%d>\n", savegame.inventoryCurrentItem);
    printOut("savepointId:<%d>\n", savegame.savepointId);
    printOut("changedisc2flags:<$%02x>\n", savegame.changedisc2flags);
    printOut("activatedWomen:<$%02x>\n", savegame.activatedWomen);
    printOut("specialFlags:<$%02x>\n", savegame.specialFlags);
    printOut("validsavegame:<$%02x> should be $55\n", savegame.validsavegame);
    printOut("checkSumPage1:%02x valid:%s\n", savegame.checkSumPage1, trueOrFalse(isPage1Valid(savegame)));
    printOut("checkSumPage0:%02x valid:%s\n", savegame.checkSumPage0, trueOrFalse(isPage0Valid(savegame)));
    printOut("savegameid:%04x\n", savegameId(savegame));

    printOut("\ninventory: <%d items>\n", savegame.inventoryCount);
    for (std::size_t slot = 0; slot < inventorySlots; ++slot) {
        printSlot(slot, savegame.inventoryItemIds[slot], savegame.inventoryItemCounts[slot]);
        printOut(slot < savegame.inventoryCount ? "\n" : "->not in inventory.. (>itemcount)\n");
    }
    printOut("\nchest: <%d items>\n", static_cast<int>(chestSlots));
    for (std::size_t slot = 0; slot < chestSlots; ++slot) {
        printSlot(slot, savegame.chestItemIds[slot], savegame.chestItemCounts[slot]);
        printOut("\n");
    }
    printOut("\n----------\n");
}

}  // namespace stashkeep
