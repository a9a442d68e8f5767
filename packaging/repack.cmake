# Packs once more what CPack has packed in the order in which a folder lists its files, with the
# builder's rights and the file system's sizes: so that the same files give the same package
# wherever it is built. The times are those of SOURCE_DATE_EPOCH.
function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# Writes the size of what is installed into a .deb's control file, as Debian counts it: in KiB, each
# file rounded up, and 1 for each folder and link.
function(write_installed_size folder)
  set(total 0)
  file(GLOB_RECURSE paths LIST_DIRECTORIES true ${folder}/usr/*)
  foreach(path IN LISTS paths)
    set(size 1024)
    if(NOT IS_DIRECTORY ${path} AND NOT IS_SYMLINK ${path})
      file(SIZE ${path} size)
    endif()
    math(EXPR total "${total} + (${size} + 1023) / 1024")
  endforeach()
  file(READ ${folder}/DEBIAN/control control)
  string(REGEX REPLACE "Installed-Size: [0-9]+" "Installed-Size: ${total}" control "${control}")
  file(WRITE ${folder}/DEBIAN/control "${control}")
endfunction()

function(set_times folder)
  if(DEFINED ENV{SOURCE_DATE_EPOCH})
    run(find ${folder} -exec touch --no-dereference --date=@$ENV{SOURCE_DATE_EPOCH} {} +)
  endif()
endfunction()

set(files ${CPACK_TEMPORARY_DIRECTORY}-repack)
foreach(package IN LISTS CPACK_PACKAGE_FILES)
  file(REMOVE_RECURSE ${files})
  if(CPACK_GENERATOR STREQUAL "DEB")
    run(dpkg-deb --raw-extract ${package} ${files})
    run(chmod -R u=rwX,go=rX ${files})
    write_installed_size(${files})
    set_times(${files})
    run(dpkg-deb --root-owner-group --build ${files} ${package})
  elseif(CPACK_GENERATOR STREQUAL "TGZ")
    file(MAKE_DIRECTORY ${files})
    run(tar -xzf ${package} -C ${files})
    set_times(${files})
    run(tar -cf ${files}.tar -C ${files} --sort=name --format=gnu --owner=root:0 --group=root:0
        --mode=u=rwX,go=rX ${CPACK_PACKAGE_FILE_NAME})
    execute_process(COMMAND gzip -9nc ${files}.tar OUTPUT_FILE ${package} COMMAND_ERROR_IS_FATAL ANY)
  endif()
endforeach()
