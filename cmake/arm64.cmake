# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# Cross-compiles for 64-bit Arm with the Debian system root in OPCV_DLIB_SYSROOT. Programs run under qemu-user.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(triplet aarch64-linux-gnu)

set(OPCV_DLIB_SYSROOT "" CACHE PATH "Debian arm64 tree with the development packages")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES OPCV_DLIB_SYSROOT)
set(CMAKE_SYSROOT ${OPCV_DLIB_SYSROOT})
set(CMAKE_C_COMPILER ${triplet}-gcc)
set(CMAKE_CXX_COMPILER ${triplet}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${triplet})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(ENV{PKG_CONFIG_SYSROOT_DIR} ${OPCV_DLIB_SYSROOT})
set(ENV{PKG_CONFIG_LIBDIR} ${OPCV_DLIB_SYSROOT}/usr/lib/${triplet}/pkgconfig:${OPCV_DLIB_SYSROOT}/usr/share/pkgconfig)

file(GLOB python ${OPCV_DLIB_SYSROOT}/usr/include/python3.*)
if(python)
    set(Python_INCLUDE_DIR ${python} CACHE PATH "Headers of the tree's Python")
endif()

# BLAS and LAPACK, which OpenCV's core needs, are in separate folders. The loader finds them only after the packages
# have been configured, which does not happen in the system root.
set(lib ${OPCV_DLIB_SYSROOT}/usr/lib/${triplet})
set(rpath_link "-Wl,-rpath-link,${lib}/blas:${lib}/lapack")
set(CMAKE_EXE_LINKER_FLAGS_INIT ${rpath_link})
set(CMAKE_SHARED_LINKER_FLAGS_INIT ${rpath_link})
set(CMAKE_CROSSCOMPILING_EMULATOR
    qemu-aarch64-static -L ${OPCV_DLIB_SYSROOT}
    -E LD_LIBRARY_PATH=/usr/lib/${triplet}/blas:/usr/lib/${triplet}/lapack)
