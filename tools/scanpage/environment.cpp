// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Removes the environment variables by which the decoder and OpenCV would change results, write files or print text.
//
// OpenCV reads some of them as its libraries are loaded, before main. The dynamic linker runs a program's
// .preinit_array before any library's constructor, so the variables are removed there, in place and without a call.
#include <cstddef>

namespace {

constexpr const char* kPrefixes[] = {"JPEGMEM=", "JSIMD_", "OPCV_", "OPENCV_"};

[[gnu::no_sanitize("address", "undefined")]] bool startsWith(const char* text, const char* prefix) {
    for (; *prefix != '\0'; ++text, ++prefix)
        if (*text != *prefix) return false;
    return true;
}

[[gnu::no_sanitize("address", "undefined")]] bool isRemoved(const char* variable) {
    for (const char* prefix : kPrefixes)
        if (startsWith(variable, prefix)) return true;
    return false;
}

[[gnu::no_sanitize("address", "undefined")]] void clearEnvironment(int, char**, char** environment) {
    char** to = environment;
    for (char** from = environment; *from != nullptr; ++from)
        if (!isRemoved(*from)) *to++ = *from;
    *to = nullptr;
}

[[gnu::section(".preinit_array"), gnu::used]] void (*const beforeLibraries)(int, char**, char**) = clearEnvironment;

}    // namespace
