# The ZIP for users of Windows: the program, its documents and the examples, in one folder.
set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_FILE_NAME stashkeep-${PROJECT_VERSION}-windows-x86_64)
set(CPACK_PROJECT_CONFIG_FILE ${CMAKE_CURRENT_LIST_DIR}/same_bytes.cmake)

# The files of a component are packed in the order of their names, those of a plain package in the order that a drive
# has them in.
set(CPACK_ARCHIVE_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)
set(CPACK_COMPONENT_INCLUDE_TOPLEVEL_DIRECTORY ON)
set(CPACK_COMPONENTS_ALL windows)
install(TARGETS stashkeep RUNTIME DESTINATION . COMPONENT windows EXCLUDE_FROM_ALL)
# The folders are those of the source tree, so that the documents' links hold. Only the README has a name that Windows
# opens by itself.
install(FILES README.md DESTINATION . RENAME README.txt COMPONENT windows EXCLUDE_FROM_ALL)
install(FILES CHANGELOG.md CONTRIBUTING.md LICENSE DESTINATION . COMPONENT windows EXCLUDE_FROM_ALL)
install(DIRECTORY docs DESTINATION . COMPONENT windows EXCLUDE_FROM_ALL FILES_MATCHING PATTERN *.md PATTERN *.svg)
install(DIRECTORY examples DESTINATION . COMPONENT windows EXCLUDE_FROM_ALL PATTERN make_savegame.sh EXCLUDE)
include(CPack)
