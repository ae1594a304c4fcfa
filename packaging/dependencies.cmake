# Read by cpack before it makes packages: what the built files need at load becomes what their packages depend on.
cmake_policy(VERSION 3.25)
set(ENV{SOURCE_DATE_EPOCH} ${CPACK_RELEASE_DATE})

# list_dependencies(RESULT FILE...)
function(list_dependencies result)
  list(TRANSFORM ARGN PREPEND ${CPACK_BUILT_FILES}/ OUTPUT_VARIABLE files)
  execute_process(COMMAND ${CPACK_LIBRARY_DEPENDENCIES} ${files} OUTPUT_VARIABLE dependencies OUTPUT_STRIP_TRAILING_WHITESPACE
    COMMAND_ERROR_IS_FATAL ANY)
  set(${result} ${dependencies} PARENT_SCOPE)
endfunction()

# What liblrmi.so loads when it needs it.
set(loaded libx86emu3)

set(plugin_files libdisplayinfo.pi.so liblrmi.so)
set(command_files displayinfo libzeltcore.so libplugin.nsp.so)
if("plugin" IN_LIST CPACK_COMPONENTS_ALL)
  list_dependencies(CPACK_DEBIAN_PLUGIN_PACKAGE_DEPENDS ${plugin_files})
  string(APPEND CPACK_DEBIAN_PLUGIN_PACKAGE_DEPENDS ", ${loaded}")
  list_dependencies(CPACK_DEBIAN_COMMAND_PACKAGE_DEPENDS ${command_files})
  string(PREPEND CPACK_DEBIAN_COMMAND_PACKAGE_DEPENDS "displayinfo-plugin (= ${CPACK_PACKAGE_VERSION}), ")
else()
  list_dependencies(CPACK_DEBIAN_COMMAND_PACKAGE_DEPENDS ${command_files} ${plugin_files})
  string(APPEND CPACK_DEBIAN_COMMAND_PACKAGE_DEPENDS ", ${loaded}")
endif()
