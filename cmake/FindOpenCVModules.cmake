# The three OpenCV modules that are used: core, imgproc and imgcodecs.
#
# Some distributions ship the module packages without OpenCVConfig.cmake, so the header folder and the libraries are
# then looked up by name.
find_package(OpenCV CONFIG QUIET COMPONENTS core imgproc imgcodecs)
if(OpenCV_FOUND)
    set(OpenCVModules_INCLUDE_DIR ${OpenCV_INCLUDE_DIRS})
    set(OpenCVModules_LIBRARIES opencv_core opencv_imgproc opencv_imgcodecs)
    set(OpenCVModules_VERSION ${OpenCV_VERSION})
else()
    find_path(OpenCVModules_INCLUDE_DIR opencv2/imgcodecs.hpp PATH_SUFFIXES opencv4)
    set(OpenCVModules_LIBRARIES)
    foreach(module IN ITEMS imgcodecs imgproc core)
        find_library(OpenCVModules_${module}_LIBRARY opencv_${module})
        mark_as_advanced(OpenCVModules_${module}_LIBRARY)
        if(OpenCVModules_${module}_LIBRARY)
            list(APPEND OpenCVModules_LIBRARIES ${OpenCVModules_${module}_LIBRARY})
        endif()
    endforeach()
    if(OpenCVModules_INCLUDE_DIR)
        file(STRINGS ${OpenCVModules_INCLUDE_DIR}/opencv2/core/version.hpp version_lines
            REGEX "#define CV_VERSION_(MAJOR|MINOR|REVISION) +[0-9]+")
        string(REGEX REPLACE "[^0-9;]+" "" OpenCVModules_VERSION "${version_lines}")
        string(REPLACE ";" "." OpenCVModules_VERSION "${OpenCVModules_VERSION}")
    endif()
endif()

include(FindPackageHandleStandardArgs)
list(LENGTH OpenCVModules_LIBRARIES OpenCVModules_COUNT)
if(NOT OpenCVModules_COUNT EQUAL 3)
    set(OpenCVModules_LIBRARIES)
endif()
find_package_handle_standard_args(OpenCVModules
    REQUIRED_VARS OpenCVModules_INCLUDE_DIR OpenCVModules_LIBRARIES
    VERSION_VAR OpenCVModules_VERSION)
mark_as_advanced(OpenCVModules_INCLUDE_DIR)

if(OpenCVModules_FOUND AND NOT TARGET OpenCVModules::OpenCVModules)
    add_library(OpenCVModules::OpenCVModules INTERFACE IMPORTED)
    set_target_properties(OpenCVModules::OpenCVModules PROPERTIES
        INTERFACE_INCLUDE_DIRECTORIES "${OpenCVModules_INCLUDE_DIR}"
        INTERFACE_LINK_LIBRARIES "${OpenCVModules_LIBRARIES}")
endif()
