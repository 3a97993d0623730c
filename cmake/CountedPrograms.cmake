# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# The library's objects with counters of lines and branches, and test programs that link them. NAME_counted has the same
# other objects as NAME. These targets are built only by name.
if(OPCV_DLIB_COUNT)
    get_target_property(sources opcv_dlib_objects SOURCES)
    add_library(opcv_dlib_counted_objects OBJECT EXCLUDE_FROM_ALL ${sources})
    target_link_libraries(opcv_dlib_counted_objects
        PUBLIC opcv_dlib_house_flags OpenCVModules::OpenCVModules JPEG::JPEG Highway::Highway)
    foreach(property IN ITEMS INCLUDE_DIRECTORIES COMPILE_DEFINITIONS COMPILE_OPTIONS PRECOMPILE_HEADERS)
        get_target_property(value opcv_dlib_objects ${property})
        set_target_properties(opcv_dlib_counted_objects PROPERTIES ${property} "${value}")
    endforeach()
    # gcov recognises branches that only exceptions take by their calls. So the counters must be inserted before calls
    # are inlined or functions are found to be pure.
    target_compile_options(opcv_dlib_counted_objects PRIVATE
        -O1 --coverage -fprofile-update=atomic -fno-early-inlining -fno-ipa-pure-const)
    target_link_options(opcv_dlib_counted_objects PUBLIC --coverage)
endif()

# add_counted_program(NAME LIBRARY...) links these libraries in addition to the objects under test.
function(add_counted_program name)
    if(OPCV_DLIB_COUNT)
        add_executable(${name}_counted EXCLUDE_FROM_ALL $<TARGET_OBJECTS:${name}>)
        target_link_libraries(${name}_counted PRIVATE ${ARGN} opcv_dlib_counted_objects)
        set_target_properties(${name}_counted PROPERTIES LINKER_LANGUAGE CXX)
    endif()
endfunction()
