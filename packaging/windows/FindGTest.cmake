# GoogleTest from Debian's package "googletest", which holds its sources: there is no build of it for Windows.
add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
target_compile_options(gtest PRIVATE -w)
# Where it optimises, GCC 12 warns of an overlap in any sum of a literal and a string.
target_compile_options(gtest INTERFACE -Wno-restrict)
set(GTest_FOUND TRUE)
