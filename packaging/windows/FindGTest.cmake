# Builds GoogleTest from the sources in Debian's package "googletest", which has no build for Windows.
add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
target_compile_options(gtest PRIVATE -w)
# GCC 12 has a false positive for every literal + std::string when it optimises.
target_compile_options(gtest INTERFACE -Wno-restrict)
set(GTest_FOUND TRUE)
