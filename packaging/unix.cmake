# What is installed besides the program, and the packages for Linux: a .deb and a .tar.gz.
# scripts/package.sh makes and checks them.
install(FILES docs/stashkeep.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES packaging/completions/stashkeep.bash
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME stashkeep)
install(FILES packaging/completions/_stashkeep DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
install(FILES packaging/completions/stashkeep.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)

# The folders are those of the source tree, so that the documents' links hold.
install(FILES README.md CHANGELOG.md CONTRIBUTING.md LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES docs/architecture.md docs/formats.md docs/pages.svg docs/performance.md DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs)
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR}
  FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ
  DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE
  PATTERN make_savegame.sh EXCLUDE)

set(CPACK_GENERATOR TGZ)
set(CPACK_PACKAGE_NAME stashkeep)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "The stashkeep authors <authors@stashkeep.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "moves and prints savegames of the game Zarnis")
set(CPACK_PACKAGE_DESCRIPTION
  "Takes the savegames of the game Zarnis out of floppy images (D64) and memory
images (REU, GeoRAM, NeoRAM, YAPE SDL, Frodo) into a small data file, puts
them back, and prints what such a file holds, down to every flag by its name.")
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
string(TOLOWER ${CMAKE_SYSTEM_NAME} systemName)
set(CPACK_PACKAGE_FILE_NAME stashkeep-${PROJECT_VERSION}-${systemName}-${CMAKE_SYSTEM_PROCESSOR})

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/packaging/debian/arrange.cmake)
set(CPACK_STASHKEEP_DEBIAN_FOLDER ${CMAKE_CURRENT_SOURCE_DIR}/packaging/debian)
set(CPACK_POST_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/packaging/repack.cmake)
include(CPack)
