// Files that scanpage writes.
#pragma once

#include "page.h"

void writeFile(const void* data, size_t size, const std::string& file);

void writePbm(const Bits& bits, const std::string& file);

void writeG4(const Bits& bits, const KVImageDescription& description, const std::string& file);
