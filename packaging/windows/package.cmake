# The ZIP for users of Windows: the program, and what there is to read, in one folder.
set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_FILE_NAME stashkeep-${PROJECT_VERSION}-windows-x86_64)
set(CPACK_PROJECT_CONFIG_FILE ${CMAKE_CURRENT_LIST_DIR}/same_bytes.cmake)

# A component for each file: these are packed in the order of their names, files in the order that a disk has them in.
set(CPACK_ARCHIVE_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)
set(CPACK_COMPONENT_INCLUDE_TOPLEVEL_DIRECTORY ON)
set(CPACK_COMPONENTS_ALL windows_program)
install(TARGETS stashkeep RUNTIME DESTINATION . COMPONENT windows_program EXCLUDE_FROM_ALL)
foreach(document README.md LICENSE docs/formats.md)
  if(EXISTS ${PROJECT_SOURCE_DIR}/${document})
    get_filename_component(name ${document} NAME_WE)
    install(FILES ${document} DESTINATION . RENAME ${name}.txt COMPONENT windows_${name} EXCLUDE_FROM_ALL)
    list(APPEND CPACK_COMPONENTS_ALL windows_${name})
  endif()
endforeach()
include(CPack)
