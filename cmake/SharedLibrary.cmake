# libOPCV_dlib.so, its installation, its CMake package and its pkg-config file.
add_library(OPCV_dlib SHARED $<TARGET_OBJECTS:opcv_dlib_objects>)
add_library(OPCV_dlib::OPCV_dlib ALIAS OPCV_dlib)
set_target_properties(OPCV_dlib PROPERTIES
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR})
target_include_directories(OPCV_dlib INTERFACE
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_link_libraries(OPCV_dlib
    PRIVATE $<BUILD_INTERFACE:opcv_dlib_house_flags> OpenCVModules::OpenCVModules JPEG::JPEG Highway::Highway)

# Hidden visibility alone would still export templates of the standard library, so the linker gets a list of names too.
# With versioned names, a later library can provide an old and a new version of a function.
set(exports ${PROJECT_SOURCE_DIR}/cmake/exports.txt ${PROJECT_SOURCE_DIR}/cmake/exports_1.1.txt)
list(GET exports 0 first_list)
list(GET exports 1 second_list)
file(STRINGS ${first_list} names)
file(STRINGS ${second_list} later_names)
list(JOIN names ";\n" names)
list(JOIN later_names ";\n" later_names)
set(map ${PROJECT_BINARY_DIR}/exports.map)
file(CONFIGURE OUTPUT ${map} CONTENT
    "OPCV_1.0 {\nglobal:\n${names};\nlocal: *;\n};\nOPCV_1.1 {\nglobal:\n${later_names};\n} OPCV_1.0;\n")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${exports})
set_property(TARGET OPCV_dlib APPEND PROPERTY LINK_DEPENDS ${map})
target_link_options(OPCV_dlib PRIVATE
    -Wl,--version-script=${map} -Wl,-z,now -Wl,-z,relro -Wl,-z,noexecstack)

install(TARGETS OPCV_dlib EXPORT OPCV_dlibTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development)
install(FILES ${PROJECT_SOURCE_DIR}/include/OPCV_dlib.h ${PROJECT_SOURCE_DIR}/include/OPCV_dlib_read.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)

include(CMakePackageConfigHelpers)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/OPCV_dlib)
install(EXPORT OPCV_dlibTargets NAMESPACE OPCV_dlib:: FILE OPCV_dlibConfig.cmake
    DESTINATION ${package_dir} COMPONENT development)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/OPCV_dlibConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/OPCV_dlibConfigVersion.cmake DESTINATION ${package_dir} COMPONENT development)

file(RELATIVE_PATH OPCV_DLIB_PC_PREFIX ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(${PROJECT_SOURCE_DIR}/cmake/OPCV_dlib.pc.in ${PROJECT_BINARY_DIR}/OPCV_dlib.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/OPCV_dlib.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
