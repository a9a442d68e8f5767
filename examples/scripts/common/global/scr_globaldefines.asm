# Definitions shared by all scripts. Only the assembler section matters for
# savegames: the files included there define the world flags.
define SCREEN_WIDTH 40
define SCREEN_HEIGHT 25

#AsmSectionBegin
include "worldflags_village.inc"
include "worldflags_mansion.inc"
include "worldflags_mountains.inc"
#AsmSectionEnd

define HERO_SPEED 2
