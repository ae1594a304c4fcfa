# Run by cpack over what it packs: all may enter the folders, whatever the umask of who runs cpack.
# (CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS does not reach those that are made on the way to a file.)
cmake_policy(VERSION 3.25)
file(CHMOD_RECURSE ${CPACK_TEMPORARY_INSTALL_DIRECTORY} DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
