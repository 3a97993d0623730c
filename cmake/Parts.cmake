# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# The parts besides the library: tests, programs, manual pages, the Python module, benchmarks. The option of a part is
# ON, OFF or AUTO. If a package is missing, ON is an error; AUTO leaves out what needs the package and says so in one
# line.

# opcv_dlib_part(PART DEFAULT "description"): the option OPCV_DLIB_BUILD_<PART>.
function(opcv_dlib_part part default description)
    set(OPCV_DLIB_BUILD_${part} ${default} CACHE STRING "${description}: ON, OFF or AUTO")
    set_property(CACHE OPCV_DLIB_BUILD_${part} PROPERTY STRINGS AUTO ON OFF)
endfunction()

# opcv_dlib_can(RESULT PART "what" VARIABLE PACKAGE [VARIABLE PACKAGE...]): sets RESULT to whether every VARIABLE is
# true. PACKAGE is the Debian package that makes it true, and "what" needs all of them.
function(opcv_dlib_can result part what)
    set(pairs ${ARGN})
    set(missing "")
    while(pairs)
        list(POP_FRONT pairs variable package)
        if(NOT ${variable})
            list(APPEND missing ${package})
        endif()
    endwhile()
    list(REMOVE_DUPLICATES missing)
    list(JOIN missing " " packages)
    if(NOT missing)
        set(${result} TRUE PARENT_SCOPE)
        return()
    endif()
    set(${result} FALSE PARENT_SCOPE)
    if("${OPCV_DLIB_BUILD_${part}}" STREQUAL "AUTO")
        message(STATUS "OPCV_dlib: without ${what}, which needs: apt-get install ${packages}")
    else()
        set_property(GLOBAL APPEND_STRING PROPERTY opcv_dlib_missing "  ${what}: apt-get install ${packages}\n")
    endif()
endfunction()

# Stops if a part that is ON lacks something. Called once, at the end, so that everything is named in one go.
function(opcv_dlib_stop_if_missing)
    get_property(missing GLOBAL PROPERTY opcv_dlib_missing)
    if(missing)
        message(FATAL_ERROR "OPCV_dlib cannot make what was asked for:\n${missing}")
    endif()
endfunction()
