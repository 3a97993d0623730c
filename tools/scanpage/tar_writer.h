// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// A tar stream that is written member by member.
#pragma once

#include <archive.h>

#include <cstdint>

#include "sha256.h"
#include "tar_entry.h"

enum class Compression { kByName, kNone, kGzip, kZstd };

// .gz, .tgz, .zst and .tzst are compressed.
Compression compressionOf(const std::string& file);

// Every function throws if the stream cannot be written.
class TarWriter {
public:
    TarWriter(int descriptor, std::string name, Compression compression);    // the name is for messages
    TarWriter(const TarWriter&) = delete;                                    // libarchive keeps its address
    TarWriter& operator=(const TarWriter&) = delete;
    ~TarWriter();    // without `finish` the stream ends before tar's end marker, so that readers notice

    void begin(archive_entry* entry);
    void write(const void* bytes, size_t size);    // of the member
    void finish();

    // Of the stream as it is written. The sum may be taken once, after `finish`.
    uint64_t size() const { return size_; }
    std::string sha256() { return sum_.digits(); }

private:
    [[noreturn]] void fail();
    static la_ssize_t writePiece(archive* writer, void* self, const void* bytes, size_t size);

    int descriptor_;
    std::string name_;
    int error_ = 0;    // of the system
    Sha256 sum_;
    uint64_t size_ = 0;
    std::unique_ptr<archive, int (*)(archive*)> archive_;
};
