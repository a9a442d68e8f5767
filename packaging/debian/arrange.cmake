# Gives the files of a .deb the names and places that Debian wants, between installing and packing.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()

set(share ${CPACK_TEMPORARY_DIRECTORY}/usr/share)
set(documents ${share}/doc/stashkeep)

# compress(FROM TO): without its name and time, so that the same bytes come out of the same bytes.
function(compress from to)
  execute_process(COMMAND gzip -9nc ${from} OUTPUT_FILE ${to} COMMAND_ERROR_IS_FATAL ANY)
  file(CHMOD ${to} PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
endfunction()

compress(${share}/man/man1/stashkeep.1 ${share}/man/man1/stashkeep.1.gz)
compress(${CPACK_STASHKEEP_DEBIAN_FOLDER}/changelog ${documents}/changelog.gz)
file(REMOVE ${share}/man/man1/stashkeep.1)
file(COPY ${CPACK_STASHKEEP_DEBIAN_FOLDER}/copyright DESTINATION ${documents}
  FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
# The licence is in the copyright file, where the documents' links to it have to lead.
file(REMOVE ${documents}/LICENSE)
file(CREATE_LINK copyright ${documents}/LICENSE SYMBOLIC)

# Debian's zsh looks here for what packages bring.
file(MAKE_DIRECTORY ${share}/zsh/vendor-completions)
file(RENAME ${share}/zsh/site-functions/_stashkeep ${share}/zsh/vendor-completions/_stashkeep)
file(REMOVE_RECURSE ${share}/zsh/site-functions)

execute_process(
  COMMAND strip --remove-section=.comment --remove-section=.note ${CPACK_TEMPORARY_DIRECTORY}/usr/bin/stashkeep
  COMMAND_ERROR_IS_FATAL ANY)
