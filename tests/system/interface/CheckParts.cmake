# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# The parts beside the library: what lacks a package is left out with one line if it is AUTO, and an error if it is ON.
cmake_minimum_required(VERSION 3.25)
file(REMOVE_RECURSE ${WORK})

# Configures as if four packages were not installed; sets result and output.
function(configure)
    execute_process(
        COMMAND ${CMAKE_COMMAND} -G ${GENERATOR} -S ${SOURCE} -B ${WORK} ${COMPILERS}
            -DCMAKE_DISABLE_FIND_PACKAGE_GTest=ON -DCMAKE_DISABLE_FIND_PACKAGE_CLI11=ON
            -DCMAKE_DISABLE_FIND_PACKAGE_Doxygen=ON -DCMAKE_DISABLE_FIND_PACKAGE_pybind11=ON ${ARGN}
        RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    set(result ${result} PARENT_SCOPE)
    set(output "${output}" PARENT_SCOPE)
endfunction()

# expect_lines(COUNT REGEX)
function(expect_lines count regex)
    string(REGEX MATCHALL "${regex}" lines "${output}")
    list(LENGTH lines found)
    if(NOT found EQUAL count)
        message(FATAL_ERROR "${found} lines match ${regex}, not ${count}:\n${output}")
    endif()
endfunction()

function(expect_success)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${output}")
    endif()
endfunction()

configure()
expect_success()
foreach(package IN ITEMS libgtest-dev libcli11-dev doxygen pybind11-dev)
    expect_lines(1 "OPCV_dlib: without [^\n]*apt-get install[^\n]* ${package}\n")
endforeach()

configure(-DOPCV_DLIB_BUILD_TESTS=OFF -DOPCV_DLIB_BUILD_TOOLS=OFF)
expect_success()
expect_lines(0 "libgtest-dev|libcli11-dev")

configure(-DOPCV_DLIB_BUILD_TESTS=ON -DOPCV_DLIB_BUILD_PYTHON=ON)
if(result EQUAL 0)
    message(FATAL_ERROR "Missing packages of parts that are ON were no error:\n${output}")
endif()
expect_lines(1 "the tests: apt-get install libgtest-dev\n")
expect_lines(1 "the Python module: apt-get install pybind11-dev\n")
