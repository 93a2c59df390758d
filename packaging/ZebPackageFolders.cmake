# Run by cpack on what it is about to pack: folders that were made on the way to a file have the caller's umask in their
# permissions, which must not reach the package.
file(GLOB_RECURSE entries LIST_DIRECTORIES true ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*)
foreach(entry IN LISTS entries)
  if(IS_DIRECTORY ${entry} AND NOT IS_SYMLINK ${entry})
    file(CHMOD ${entry} DIRECTORY_PERMISSIONS
      OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
  endif()
endforeach()
