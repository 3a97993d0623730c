// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// File names as text on one line.
#pragma once

#include <string>

// Backslash, tab, line feed and carriage return become \\, \t, \n and \r; other control characters (C1 included) and
// bytes that are not UTF-8 become \x and two hexadecimal digits.
std::string escaped(const std::string& name);
