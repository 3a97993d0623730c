// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// A file that gets its name when it is complete.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "descriptor.h"

// Without a name (O_TMPFILE), or, where the file system needs one, under a name that nobody can guess and that is
// removed with the object. Every function throws std::system_error.
class UnnamedFile {
public:
    explicit UnnamedFile(int folder);
    ~UnnamedFile();
    UnnamedFile(const UnnamedFile&) = delete;
    UnnamedFile& operator=(const UnnamedFile&) = delete;

    void write(const std::vector<uint8_t>& bytes);
    void write(const std::string& text);
    void sync();
    int descriptor() const { return descriptor_.get(); }    // for reading and writing

    void giveName(const std::string& name);    // fails if the name is taken
    void replace(const std::string& name);

private:
    void openUnderRandomName();
    bool link(const std::string& name) const;

    int folder_;
    Descriptor descriptor_;
    std::string temporary_;    // its name until then; empty: none
};
