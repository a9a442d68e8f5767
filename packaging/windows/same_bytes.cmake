# Read by CPack before it packs. Files of the same bytes make the same ZIP, wherever and whenever that happens.
if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
  set(ENV{SOURCE_DATE_EPOCH} 1767225600) # the start of 2026
endif()
set(ENV{TZ} UTC)
