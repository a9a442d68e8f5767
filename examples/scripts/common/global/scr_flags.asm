# The game's flags. Bits are assigned in this order, starting with bit 0:
#   .flag NAME          one bit
#   .flags NAME, COUNT  COUNT bits

# Story
.flag FLAG_INTRO_SEEN
.flag FLAG_MAYOR_MET
.flag FLAG_SWORD_FOUND
.flags FLAG_BRIDGE_STATE, 3
.flags FLAG_SMITH_DEBT, 2
.flags FLAG_MILL_GRAIN, 8
.flag FLAG_BOAT_FOUND
.flags FLAG_HERMIT_MOOD, 4

# Mansion
.flags FLAG_MANSION_FLOOR, 4
.flag FLAG_BUTLER_BRIBED
.flag FLAG_CELLAR_LIT
.flags FLAG_PORTRAITS_TURNED, 4

# Mountains
.flags FLAG_DRAGON_ANGER, 6
.flags FLAG_STEPS_WALKED, 16
.flag FLAG_PASS_GUARD_ASLEEP
.flag FLAG_ECHO_HEARD
.flags FLAG_HERBS_DRIED, 5

# Women
.flag FLAG_GERDA_FREED
.flag FLAG_INGA_FREED
.flag FLAG_HILDA_FREED
.flags FLAG_COINS_GIVEN, 3

# Odds and ends
.flag FLAG_DOG_FED
