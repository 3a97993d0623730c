// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// What the header says of each function.
#pragma once

#include <map>
#include <string>

struct Described {
    std::string brief;      // its first paragraph
    std::string endings;    // statuses and exceptions, in the order of the header
};

// By the function's name.
std::map<std::string, Described> described(const std::string& header);
