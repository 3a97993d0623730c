# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# The OpenCV modules. The library uses core and imgproc (OpenCVModules::OpenCVModules). Tests, benchmarks and examples
# also use imgcodecs, to read and write image files (OpenCVModules::ImageFiles).
#
# Some distributions ship the module packages without OpenCVConfig.cmake, so the header folder and the libraries are
# then looked up by name.
find_package(OpenCV CONFIG QUIET COMPONENTS core imgproc OPTIONAL_COMPONENTS imgcodecs)
if(OpenCV_FOUND)
    set(OpenCVModules_INCLUDE_DIR ${OpenCV_INCLUDE_DIRS})
    set(OpenCVModules_VERSION ${OpenCV_VERSION})
    foreach(module IN ITEMS core imgproc imgcodecs)
        if(TARGET opencv_${module})
            set(OpenCVModules_${module}_LIBRARY opencv_${module})
        endif()
    endforeach()
else()
    find_path(OpenCVModules_INCLUDE_DIR opencv2/imgproc.hpp PATH_SUFFIXES opencv4)
    foreach(module IN ITEMS core imgproc imgcodecs)
        find_library(OpenCVModules_${module}_LIBRARY opencv_${module})
        mark_as_advanced(OpenCVModules_${module}_LIBRARY)
    endforeach()
    if(OpenCVModules_INCLUDE_DIR)
        file(STRINGS ${OpenCVModules_INCLUDE_DIR}/opencv2/core/version.hpp version_lines
            REGEX "#define CV_VERSION_(MAJOR|MINOR|REVISION) +[0-9]+")
        string(REGEX REPLACE "[^0-9;]+" "" OpenCVModules_VERSION "${version_lines}")
        string(REPLACE ";" "." OpenCVModules_VERSION "${OpenCVModules_VERSION}")
    endif()
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(OpenCVModules
    REQUIRED_VARS OpenCVModules_INCLUDE_DIR OpenCVModules_core_LIBRARY OpenCVModules_imgproc_LIBRARY
    VERSION_VAR OpenCVModules_VERSION)
mark_as_advanced(OpenCVModules_INCLUDE_DIR)

if(OpenCVModules_FOUND AND NOT TARGET OpenCVModules::OpenCVModules)
    add_library(OpenCVModules::OpenCVModules INTERFACE IMPORTED)
    set_target_properties(OpenCVModules::OpenCVModules PROPERTIES
        INTERFACE_INCLUDE_DIRECTORIES "${OpenCVModules_INCLUDE_DIR}"
        INTERFACE_LINK_LIBRARIES "${OpenCVModules_imgproc_LIBRARY};${OpenCVModules_core_LIBRARY}")
    if(OpenCVModules_imgcodecs_LIBRARY)
        add_library(OpenCVModules::ImageFiles INTERFACE IMPORTED)
        set_target_properties(OpenCVModules::ImageFiles PROPERTIES
            INTERFACE_LINK_LIBRARIES "${OpenCVModules_imgcodecs_LIBRARY};OpenCVModules::OpenCVModules")
    endif()
endif()
