// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// A tar stream that is read member by member. It may be compressed by gzip, bzip2, xz, lz4 or zstd.
#pragma once

#include <archive.h>

#include <cstdint>
#include <vector>

#include "sha256.h"
#include "tar_entry.h"

// Every function throws if the stream cannot be read, is damaged, or ends before tar's end marker.
class TarReader {
public:
    TarReader(int descriptor, std::string name);    // the name is for messages
    TarReader(const TarReader&) = delete;           // libarchive keeps its address
    TarReader& operator=(const TarReader&) = delete;

    // The next member; null at the end. Only after that the sum is complete.
    TarEntry next();

    // Adds up to `size` bytes of the member, fewer at its end only.
    void append(std::vector<uint8_t>& bytes, size_t size);

    // Of the stream as it is read, compressed or not.
    uint64_t size() const { return size_; }
    std::string sha256() { return sum_.digits(); }

private:
    [[noreturn]] void fail();
    void requireEndMarker();
    static la_ssize_t readPiece(archive* reader, void* self, const void** piece);

    int descriptor_;
    std::string name_;
    int error_ = 0;    // of the system
    Sha256 sum_;
    uint64_t size_ = 0;
    std::vector<uint8_t> piece_;
    std::unique_ptr<archive, int (*)(archive*)> archive_;
};
