# SPDX-License-Identifier: MIT
# add_suites(PROGRAM): one test of ctest's for each suite of a GoogleTest program, found when it is linked. A process for each
# test case would take longer to start than to run.
if(CMAKE_SCRIPT_MODE_FILE)
    execute_process(COMMAND ${program} --gtest_list_tests OUTPUT_VARIABLE list COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX MATCHALL "\n[^ \n]+\\.[^\n]*" suites "\n${list}")
    if(NOT suites)
        message(FATAL_ERROR "${program} has no tests")
    endif()
    set(text "")
    foreach(suite IN LISTS suites)
        string(REGEX REPLACE "\n([^ ]+)\\..*" "\\1" suite "${suite}")
        string(APPEND text "add_test([[${suite}]] [[${program}]] [[--gtest_filter=${suite}.*]])\n")
    endforeach()
    file(WRITE ${list_file} "${text}")
    return()
endif()

function(add_suites program)
    set(list ${CMAKE_CURRENT_BINARY_DIR}/${program}-suites.cmake)
    add_custom_command(TARGET ${program} POST_BUILD BYPRODUCTS ${list}
                       COMMAND ${CMAKE_COMMAND} -D program=$<TARGET_FILE:${program}> -D list_file=${list}
                               -P ${CMAKE_SOURCE_DIR}/cmake/suites.cmake)
    file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/${program}-tests.cmake
         "if(EXISTS [[${list}]])\n    include([[${list}]])\nelse()\n    add_test(${program}-not-built ${program}-not-built)\nendif()\n")
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${CMAKE_CURRENT_BINARY_DIR}/${program}-tests.cmake)
endfunction()
