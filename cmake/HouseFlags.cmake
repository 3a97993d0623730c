# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# Compiler settings for this project's code, as an interface target.
add_library(opcv_dlib_house_flags INTERFACE)
target_compile_options(opcv_dlib_house_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion
    -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=    # __FILE__ is relative to the source tree
    -ffp-contract=off    # multiply and add are fused only where the code calls fma
    -fstack-protector-strong)
# Calls between exported functions go through the exported symbol, so that it can be interposed. GCC does so by default.
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    target_compile_options(opcv_dlib_house_flags INTERFACE -fsemantic-interposition)
endif()
# Indirect jumps may only land at the start of a function.
if(CMAKE_SYSTEM_PROCESSOR STREQUAL "aarch64")
    target_compile_options(opcv_dlib_house_flags INTERFACE -mbranch-protection=standard)
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
    target_compile_options(opcv_dlib_house_flags INTERFACE -fcf-protection=full)
endif()

if(OPCV_DLIB_SANITIZE)
    set(sanitize -fsanitize=${OPCV_DLIB_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_compile_options(opcv_dlib_house_flags INTERFACE ${sanitize})
    target_link_options(opcv_dlib_house_flags INTERFACE ${sanitize})
    if(CMAKE_CROSSCOMPILING)
        # The system root has no sanitizer libraries.
        target_link_options(opcv_dlib_house_flags INTERFACE -static-libasan -static-libubsan)
    endif()
else()
    target_compile_definitions(opcv_dlib_house_flags INTERFACE
        $<$<NOT:$<CONFIG:Debug>>:_FORTIFY_SOURCE=2>)
endif()
