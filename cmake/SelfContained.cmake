# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# The static OpenCV, libjpeg-turbo and Highway that ./dev static has built, under the names that the rest of the build
# uses. What is linked with them maps no shared library of theirs and shows none of their names.
if(NOT OPCV_DLIB_STATIC_LIBRARIES)
    set(architecture amd64)
    if(CMAKE_SYSTEM_PROCESSOR STREQUAL "aarch64")
        set(architecture arm64)
    endif()
    set(OPCV_DLIB_STATIC_LIBRARIES ${PROJECT_SOURCE_DIR}/build/static/${architecture})
endif()
set(OPCV_DLIB_STATIC_LIBRARIES ${OPCV_DLIB_STATIC_LIBRARIES} CACHE PATH "The folder that ./dev static has made")

# static_library(NAME): the target static_NAME of libNAME.a.
function(static_library name)
    if(NOT EXISTS ${OPCV_DLIB_STATIC_LIBRARIES}/lib/lib${name}.a)
        message(FATAL_ERROR "There is no lib${name}.a in ${OPCV_DLIB_STATIC_LIBRARIES}/lib. Run ./dev static.")
    endif()
    add_library(static_${name} STATIC IMPORTED GLOBAL)
    set_target_properties(static_${name} PROPERTIES
        IMPORTED_LOCATION ${OPCV_DLIB_STATIC_LIBRARIES}/lib/lib${name}.a
        INTERFACE_INCLUDE_DIRECTORIES ${OPCV_DLIB_STATIC_LIBRARIES}/include)
endfunction()

foreach(name IN ITEMS hwy jpeg opencv_core opencv_imgproc)
    static_library(${name})
endforeach()
set_property(TARGET static_opencv_core APPEND PROPERTY
    INTERFACE_INCLUDE_DIRECTORIES ${OPCV_DLIB_STATIC_LIBRARIES}/include/opencv4)
find_package(Threads REQUIRED)
set_property(TARGET static_opencv_core PROPERTY INTERFACE_LINK_LIBRARIES Threads::Threads ${CMAKE_DL_LIBS})

add_library(OpenCVModules::OpenCVModules INTERFACE IMPORTED)
set_property(TARGET OpenCVModules::OpenCVModules PROPERTY
    INTERFACE_LINK_LIBRARIES static_opencv_imgproc static_opencv_core)
add_library(JPEG::JPEG ALIAS static_jpeg)
add_library(Highway::Highway ALIAS static_hwy)
set(OpenCVModules_FOUND ON)
set(JPEG_FOUND ON)
set(Highway_FOUND ON)

# Functions that nothing calls are left out.
target_compile_options(opcv_dlib_house_flags INTERFACE -ffunction-sections -fdata-sections)
add_link_options(-Wl,--gc-sections -Wl,--exclude-libs,ALL)
