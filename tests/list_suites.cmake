# cmake -D PROGRAM=... -D LIST=... -P list_suites.cmake: writes the file LIST, from which CTest knows the suites of a
# test program. Runs after the program is linked. Each suite is one process, since starting one takes longer than most
# tests.
cmake_policy(VERSION 3.25)
execute_process(COMMAND ${PROGRAM} --gtest_list_tests OUTPUT_VARIABLE listing TIMEOUT 60 COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "(^|\n)[A-Za-z0-9_/]+\\.( |\n)" lines "${listing}")
set(tests "")
foreach(line IN LISTS lines)
  string(REGEX REPLACE "[. \n]" "" suite "${line}")
  string(APPEND tests "add_test(\"${suite}\" \"${PROGRAM}\" \"--gtest_filter=${suite}.*\" --gtest_brief=1)\n"
    "set_tests_properties(\"${suite}\" PROPERTIES TIMEOUT 600)\n")
endforeach()
file(WRITE ${LIST} "${tests}")
