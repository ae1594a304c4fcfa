# A room is a folder whose code is one target. It names the rooms that it uses, and is compiled with the project's
# flags. tests/check-includes checks every #include against what is declared here.

# The flags of every target of the project. Warnings are errors for people who work on the project; those who make
# packages may have a compiler that warns of more.
add_library(project_flags INTERFACE)
target_include_directories(project_flags INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(project_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor
  $<$<BOOL:${BUILD_TESTING}>:-Werror>)
# 64-bit time and file sizes, even in the 32-bit build, so that dates after 2038 work in both.
target_compile_definitions(project_flags INTERFACE _FILE_OFFSET_BITS=64 _TIME_BITS=64)
# Code and constants in one segment, so that the loader maps a library by two calls instead of four: a 32-bit loader's
# calls, by interrupt, are slow.
target_link_options(project_flags INTERFACE -Wl,-z,noseparate-code)
# What is delivered has the hardening of Debian's packages (dpkg-buildflags, hardening=+all); tests/packaging has a test
# that reads it from the binaries. The sizes that _FORTIFY_SOURCE checks come from the optimiser. -fcf-protection marks
# code for processors that are 64-bit ones.
add_library(delivered_flags INTERFACE)
target_compile_options(delivered_flags INTERFACE
  -fstack-protector-strong -fstack-clash-protection -Wformat -Werror=format-security)
if(CMAKE_SIZEOF_VOID_P EQUAL 8)
  target_compile_options(delivered_flags INTERFACE -fcf-protection)
endif()
target_compile_definitions(delivered_flags INTERFACE $<$<CONFIG:Release>:_FORTIFY_SOURCE=2>)
target_link_options(delivered_flags INTERFACE -Wl,-z,relro,-z,now)

# The loader need not search every earlier library by name for a function that a library calls in itself.
add_library(own_functions INTERFACE)
target_link_options(own_functions INTERFACE -Wl,-Bsymbolic-functions)
# No library may have undefined symbols. In a build with fuzzers they must, since clang's sanitizers are linked only
# into the program.
if(NOT WITH_FUZZERS)
  target_link_options(project_flags INTERFACE $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,SHARED_LIBRARY>:-Wl,--no-undefined>)
endif()

# declare_room(NAME [USES room...] [HEADERS path...]): what code below the current folder, or only the HEADERS, may
# include.
function(declare_room name)
  cmake_parse_arguments(ROOM "" "" "HEADERS;USES" ${ARGN})
  file(RELATIVE_PATH folder ${CMAKE_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
  set(places ${folder}/)
  if(ROOM_HEADERS)
    list(TRANSFORM ROOM_HEADERS PREPEND ${folder}/ OUTPUT_VARIABLE places)
  endif()
  foreach(place ${places})
    file(APPEND ${ROOMS_FILE} "${place} ${name} ${ROOM_USES}\n")
  endforeach()
endfunction()
set(ROOMS_FILE ${CMAKE_BINARY_DIR}/rooms.txt)
file(WRITE ${ROOMS_FILE} "")

# optimise_more(TARGET): for code that runs every time, where speed is worth a longer build.
function(optimise_more target)
  target_compile_options(${target} PRIVATE $<$<CONFIG:Release>:-O2>)
endfunction()

# add_room(NAME [SOURCES file...] [USES room...] [LIBRARIES target...]): without SOURCES, a room that has only headers.
# LIBRARIES are not ours.
function(add_room name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;USES;LIBRARIES" ${ARGN})
  declare_room(${name} USES ${ROOM_USES})
  if(ROOM_SOURCES)
    add_library(${name} STATIC ${ROOM_SOURCES})
    target_link_libraries(${name} PUBLIC ${ROOM_USES} PRIVATE project_flags delivered_flags ${ROOM_LIBRARIES})
  else()
    add_library(${name} INTERFACE)
    target_link_libraries(${name} INTERFACE ${ROOM_USES})
  endif()
endfunction()
