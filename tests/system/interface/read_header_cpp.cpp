// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The reading header alone, as C++17, before any other.
#include "OPCV_dlib_read.h"

opcv_read_status readNothingInCpp();

opcv_read_status readNothingInCpp() {
    KVIMG* page = nullptr;
    return opcv_read_page("\xFF\xD8\xFF\xD9", 4, nullptr, &page, nullptr);
}
