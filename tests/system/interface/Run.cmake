# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# run(COMMAND...): stops with what the command printed if it fails; else leaves that in output.
function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${ARGN}: ${result}\n${output}")
    endif()
    set(output "${output}" PARENT_SCOPE)
endfunction()

# build_consumer(PREFIX FOLDER [OPTION...]): builds the README's examples against an installed library and runs them.
function(build_consumer prefix folder)
    run(${CMAKE_COMMAND} -G ${GENERATOR} -S ${CONSUMER} -B ${folder} -DCMAKE_PREFIX_PATH=${prefix}
        -DEXAMPLES=${EXAMPLES} ${ARGN})
    run(${CMAKE_COMMAND} --build ${folder})
    foreach(program IN ITEMS first_c first_cpp)
        run(${folder}/${program})
    endforeach()
endfunction()

# build_by_pkg_config(PC_FOLDER FOLDER): the same without CMake.
function(build_by_pkg_config pc_folder folder)
    set(ENV{PKG_CONFIG_PATH} ${pc_folder})
    foreach(pair IN ITEMS "cc -std=c11|first.c" "c++ -std=c++17|first.cpp")
        string(REPLACE "|" ";" pair "${pair}")
        list(GET pair 0 compiler)
        list(GET pair 1 program)
        run(sh -c "${compiler} -Wall -Wextra -Werror ${EXAMPLES}/${program} $(pkg-config --cflags --libs OPCV_dlib) -o ${folder}/${program}.out")
        run(${folder}/${program}.out)
    endforeach()
endfunction()
