# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# The installation of the library, its CMake package and its pkg-config file.

# Debian installs libraries in a folder named after the architecture.
if(PROJECT_IS_TOP_LEVEL AND EXISTS /etc/debian_version AND CMAKE_LIBRARY_ARCHITECTURE)
    set(CMAKE_INSTALL_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE} CACHE PATH "Where libraries are installed")
endif()
include(GNUInstallDirs)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/OPCV_dlib)

install(TARGETS OPCV_dlib EXPORT OPCV_dlibTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES ${PROJECT_SOURCE_DIR}/include/OPCV_dlib.h ${PROJECT_SOURCE_DIR}/include/OPCV_dlib_read.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)

# A program that links the static library links what that needs as well, so the package finds it again.
set(dependencies "")
set(OPCV_DLIB_PC_LIBS "")
if(NOT opcv_dlib_shared)
    set(dependencies
"include(CMakeFindDependencyMacro)
list(APPEND CMAKE_MODULE_PATH \${CMAKE_CURRENT_LIST_DIR})
find_dependency(OpenCVModules)
find_dependency(JPEG)
find_dependency(Highway)
list(REMOVE_ITEM CMAKE_MODULE_PATH \${CMAKE_CURRENT_LIST_DIR})
")
    set(OPCV_DLIB_PC_LIBS " -lopencv_imgproc -lopencv_core -ljpeg -lhwy -lstdc++ -lm")
    install(FILES ${PROJECT_SOURCE_DIR}/cmake/FindHighway.cmake ${PROJECT_SOURCE_DIR}/cmake/FindOpenCVModules.cmake
        DESTINATION ${package_dir} COMPONENT development)
endif()
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/OPCV_dlibConfig.cmake CONTENT
    "${dependencies}include(\${CMAKE_CURRENT_LIST_DIR}/OPCV_dlibTargets.cmake)\n" @ONLY)

include(CMakePackageConfigHelpers)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/OPCV_dlibConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/OPCV_dlibConfig.cmake ${PROJECT_BINARY_DIR}/OPCV_dlibConfigVersion.cmake
    DESTINATION ${package_dir} COMPONENT development)
install(EXPORT OPCV_dlibTargets NAMESPACE OPCV_dlib:: DESTINATION ${package_dir} COMPONENT development)

file(RELATIVE_PATH OPCV_DLIB_PC_PREFIX ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(${PROJECT_SOURCE_DIR}/cmake/OPCV_dlib.pc.in ${PROJECT_BINARY_DIR}/OPCV_dlib.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/OPCV_dlib.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
