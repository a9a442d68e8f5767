# Build settings for Windows only.

# The tests need the manifest too.
target_sources(stashkeep_core INTERFACE ${CMAKE_CURRENT_LIST_DIR}/manifest.rc)

# ASLR and DEP; no timestamp, for reproducible builds.
configure_file(packaging/windows/stashkeep.rc.in stashkeep.rc @ONLY)
target_sources(stashkeep PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/stashkeep.rc)
target_link_options(stashkeep PRIVATE
  -s -Wl,--dynamicbase,--high-entropy-va,--nxcompat,--no-insert-timestamp)
