# Run by cpack over the packages that it made.
cmake_policy(VERSION 3.25)
execute_process(COMMAND ${CMAKE_CURRENT_LIST_DIR}/member-modes ${CPACK_PACKAGE_FILES} COMMAND_ERROR_IS_FATAL ANY)
