# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# What the tools link if they are self-contained: libtiff, Leptonica and qpdf from ./dev static, and the archives in Debian's
# development packages, which all find_package of this folder finds from here on.
set(CMAKE_FIND_LIBRARY_SUFFIXES .a)
find_package(ZLIB REQUIRED)
find_package(LibArchive QUIET)

# static_needs(TARGET NAME...): the target of an archive also links libNAME.a.
function(static_needs target)
    foreach(name IN LISTS ARGN)
        find_library(static_${name}_LIBRARY ${name})
        mark_as_advanced(static_${name}_LIBRARY)
        if(static_${name}_LIBRARY)
            set_property(TARGET ${target} APPEND PROPERTY INTERFACE_LINK_LIBRARIES ${static_${name}_LIBRARY})
        elseif(NOT name STREQUAL "sharpyuv")    # of libwebp 1.3 and later
            message(FATAL_ERROR "There is no lib${name}.a. Run ./dev static.")
        endif()
    endforeach()
    set_property(TARGET ${target} APPEND PROPERTY INTERFACE_LINK_LIBRARIES ZLIB::ZLIB)
endfunction()

if(LibArchive_FOUND)
    static_needs(LibArchive::LibArchive bz2 lz4 lzma zstd)
endif()
static_library(tiff)
static_needs(static_tiff webp sharpyuv Lerc zstd lzma deflate)
set_property(TARGET static_tiff APPEND PROPERTY INTERFACE_LINK_LIBRARIES JPEG::JPEG m)
add_library(TIFF::TIFF ALIAS static_tiff)
set(TIFF_FOUND ON)
static_library(leptonica)
set_property(TARGET static_leptonica PROPERTY INTERFACE_LINK_LIBRARIES TIFF::TIFF)
add_library(Leptonica::Leptonica ALIAS static_leptonica)
set(Leptonica_FOUND ON)
static_library(qpdf)
set_property(TARGET static_qpdf PROPERTY INTERFACE_LINK_LIBRARIES JPEG::JPEG ZLIB::ZLIB)
add_library(qpdf::libqpdf ALIAS static_qpdf)
set(qpdf_FOUND ON)

# The runtime of C++ too. The program then maps the C library only.
list(APPEND opcv_dlib_linked -static-libstdc++ -static-libgcc)
