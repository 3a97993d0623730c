// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The files that scanpage writes, as bytes. Each holds `mark` in a comment.
#pragma once

#include "page.h"

// Without mark.
std::vector<uint8_t> jpegStream(const KVIMG& page, KVImageDescriptionHandle description, JpegQuality quality);

std::vector<uint8_t> jpegFile(const std::vector<uint8_t>& stream, const std::string& mark);

std::vector<uint8_t> pbmFile(const Bits& bits, const std::string& mark);

// CCITT group 4.
std::vector<uint8_t> tiffFile(const Bits& bits, const KVImageDescription& description, const std::string& mark);

// The compressed rows of such a file.
std::vector<uint8_t> g4Stream(const Bits& bits);
