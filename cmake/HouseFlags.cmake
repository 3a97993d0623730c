# Compiler settings for our own code, as an interface target.
add_library(opcv_dlib_house_flags INTERFACE)
target_compile_options(opcv_dlib_house_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion
    -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=    # messages name a file of ours, not where it was compiled
    -ffp-contract=off    # where a multiply and an add are fused, the code says fma
    -fstack-protector-strong)
# A call between exported functions goes through the exported name, which GCC sees to by itself.
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    target_compile_options(opcv_dlib_house_flags INTERFACE -fsemantic-interposition)
endif()
# An indirect jump may only land where a function begins.
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
        # The tree in which the programs run has no sanitizer libraries.
        target_link_options(opcv_dlib_house_flags INTERFACE -static-libasan -static-libubsan)
    endif()
else()
    target_compile_definitions(opcv_dlib_house_flags INTERFACE
        $<$<NOT:$<CONFIG:Debug>>:_FORTIFY_SOURCE=2>)
endif()
