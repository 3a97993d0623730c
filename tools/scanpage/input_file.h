// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// A page's file as it is read.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "file_id.h"

// Adds the file that the name leads to, and the link if the name is one. Does nothing if there is no such file.
void addInput(const std::string& file, InputIds& inputs);

// The contents of a JPEG file. Reading stops at the first bytes that cannot belong to a JPEG header, so a large file of
// another kind costs nothing. Throws if it is not a regular file, too large, cannot be read or is no JPEG file.
std::vector<uint8_t> readJpegFile(const std::string& file);
