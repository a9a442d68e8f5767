# What programs for Windows need beyond the code that all systems share.

# How Windows treats stashkeep, and the tests alike.
target_sources(stashkeep_core INTERFACE ${CMAKE_CURRENT_LIST_DIR}/manifest.rc)

# Loaded at random addresses and without executable data; nothing in it tells when it was built.
configure_file(packaging/windows/stashkeep.rc.in stashkeep.rc @ONLY)
target_sources(stashkeep PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/stashkeep.rc)
target_link_options(stashkeep PRIVATE
  -s -Wl,--dynamicbase,--high-entropy-va,--nxcompat,--no-insert-timestamp)

if(CMAKE_CROSSCOMPILING)
  list(APPEND CMAKE_MODULE_PATH ${CMAKE_CURRENT_LIST_DIR})
  set(drive Z:) # where Wine shows the folders of the machine that builds
endif()
