// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// How scanpage recognises its own results.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Each result holds a line of text in a comment of its format:
//
//     scanpage: page 9c1185a5c5e9fc54, options --median cross --mode 450, sum 5d41402abc4b2a76
//
// with sums of the page's file and of the result itself. The second covers every byte of the file but its own digits,
// and the file's name. So a file that was cut, changed, copied to another name or written by another program is not
// taken for a result, and a result of another page or of other options is not taken for this one.

// The line, for a file that is yet to be made; its sum is still zero.
std::string resultMark(uint64_t pageSum, const std::string& options);

// Fills in the sum of a complete file, in memory or open for reading and writing. Throws std::system_error.
void seal(std::vector<uint8_t>& file, const std::string& name);
void seal(int descriptor, const std::string& name);

// The line as resultMark made it; empty if the file is not a whole result of this name, or cannot be read.
std::string markOf(int descriptor, const std::string& name);
