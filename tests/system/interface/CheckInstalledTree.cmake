# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# Installs into an empty prefix, then builds and runs the README's examples against it, once with find_package and once
# with pkg-config.
include(${CMAKE_CURRENT_LIST_DIR}/Run.cmake)
file(REMOVE_RECURSE ${WORK})
set(prefix ${WORK}/prefix)

run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix})
file(GLOB_RECURSE pc ${prefix}/*/OPCV_dlib.pc)
get_filename_component(pc_dir ${pc} DIRECTORY)
get_filename_component(lib_dir ${pc_dir} DIRECTORY)

build_consumer(${prefix} ${WORK}/consumer)
set(ENV{LD_LIBRARY_PATH} ${lib_dir})
build_by_pkg_config(${pc_dir} ${WORK})
set(ENV{PKG_CONFIG_PATH} ${pc_dir})
run(sh -c "pkg-config --print-requires --print-requires-private OPCV_dlib")
if(output MATCHES "opencv")
    message(FATAL_ERROR "The .pc file pulls in OpenCV: ${output}")
endif()
