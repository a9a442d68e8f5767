# By hand, because CMake's own way, POSITION_INDEPENDENT_CODE with check_pie_supported(), links with -pie: together with
# -static-pie that gives a program which needs an interpreter.
add_compile_options(-fPIE)

# Hardening of the Release configuration. Whoever sets _FORTIFY_SOURCE, or has a compiler that does, keeps that level.
set(CMAKE_REQUIRED_FLAGS ${CMAKE_CXX_FLAGS_RELEASE})
check_cxx_symbol_exists(_FORTIFY_SOURCE cstdio STASHKEEP_FORTIFIED_ALREADY)
unset(CMAKE_REQUIRED_FLAGS)
if(NOT STASHKEEP_FORTIFIED_ALREADY)
  add_compile_definitions($<$<CONFIG:Release>:_FORTIFY_SOURCE=2>)
endif()
add_compile_options($<$<CONFIG:Release>:-fstack-protector-strong>)
if(WIN32)
  add_link_options($<$<CONFIG:Release>:-fstack-protector-strong>)
else()
  check_linker_flag(CXX -Wl,-z,relro,-z,now,-z,noexecstack STASHKEEP_CAN_HARDEN_LINK)
  if(STASHKEEP_CAN_HARDEN_LINK)
    add_link_options($<$<CONFIG:Release>:-Wl,-z,relro,-z,now,-z,noexecstack>)
  endif()
endif()
