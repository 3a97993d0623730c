// The formats that scanpage writes. Each returns the size of the file in bytes.
#pragma once

#include "page.h"

size_t writeJpeg(const KVIMG& page, KVImageDescriptionHandle description, int mode, const std::string& file);

size_t writePbm(const Bits& bits, const std::string& file);

size_t writeG4(const Bits& bits, const KVImageDescription& description, const std::string& file);
