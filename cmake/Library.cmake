# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# The library: libOPCV_dlib.so, or with BUILD_SHARED_LIBS=OFF libOPCV_dlib.a. Both define the names that the
# lists of exports hold and no others.
set(exports ${PROJECT_SOURCE_DIR}/cmake/exports.txt ${PROJECT_SOURCE_DIR}/cmake/exports_1.1.txt)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${exports})
set(opcv_dlib_shared ON)
if(DEFINED BUILD_SHARED_LIBS AND NOT BUILD_SHARED_LIBS)
    set(opcv_dlib_shared OFF)
endif()

if(opcv_dlib_shared)
    # Hidden visibility alone would still export templates of the standard library, so the linker gets a list of names
    # too. With versioned names, a later library can provide an old and a new version of a function.
    add_library(OPCV_dlib SHARED $<TARGET_OBJECTS:opcv_dlib_objects>)
    list(GET exports 0 first_list)
    list(GET exports 1 second_list)
    file(STRINGS ${first_list} names)
    file(STRINGS ${second_list} later_names)
    list(JOIN names ";\n" names)
    list(JOIN later_names ";\n" later_names)
    set(map ${PROJECT_BINARY_DIR}/exports.map)
    file(CONFIGURE OUTPUT ${map} CONTENT
        "OPCV_1.0 {\nglobal:\n${names};\nlocal: *;\n};\nOPCV_1.1 {\nglobal:\n${later_names};\n} OPCV_1.0;\n")
    set_property(TARGET OPCV_dlib APPEND PROPERTY LINK_DEPENDS ${map})
    target_link_options(OPCV_dlib PRIVATE
        -Wl,--version-script=${map} -Wl,-z,now -Wl,-z,relro -Wl,-z,noexecstack)
else()
    # One object, in which all other names are local, so that they cannot collide with names in the program.
    set(whole ${PROJECT_BINARY_DIR}/OPCV_dlib.o)
    set(objects "$<FILTER:$<TARGET_OBJECTS:opcv_dlib_objects>,EXCLUDE,[.]gch$>")    # not the precompiled header
    list(TRANSFORM exports PREPEND --keep-global-symbols= OUTPUT_VARIABLE keep_exports)
    add_custom_command(OUTPUT ${whole}
        COMMAND ${CMAKE_CXX_COMPILER} -fuse-ld=bfd -nostdlib -r -Wl,--force-group-allocation
            -o ${whole} ${objects}
        COMMAND ${CMAKE_OBJCOPY} ${keep_exports} ${whole}
        DEPENDS ${objects} ${exports}
        COMMENT "Joining the objects of the static library"
        COMMAND_EXPAND_LISTS
        VERBATIM)
    set(language ${PROJECT_BINARY_DIR}/OPCV_dlib_language.cpp)
    file(CONFIGURE OUTPUT ${language} CONTENT "// Makes a C program that links the library link that of C++ too.\n")
    add_library(OPCV_dlib STATIC ${whole} ${language})
endif()
add_library(OPCV_dlib::OPCV_dlib ALIAS OPCV_dlib)
set_target_properties(OPCV_dlib PROPERTIES
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR})
target_include_directories(OPCV_dlib INTERFACE $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>)
target_link_libraries(OPCV_dlib
    PRIVATE $<BUILD_INTERFACE:opcv_dlib_house_flags> OpenCVModules::OpenCVModules JPEG::JPEG Highway::Highway)

# What the programs and the Python module link. A self-contained one holds the library's objects, because a program that
# uses OpenCV itself would otherwise have a second OpenCV in it, with threads and settings of its own.
set(opcv_dlib_linked OPCV_dlib)
if(OPCV_DLIB_SELF_CONTAINED)
    set(opcv_dlib_linked opcv_dlib_objects)
endif()
