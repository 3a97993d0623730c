// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "tar_reader.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <stdexcept>

#include "stop.h"

namespace {

constexpr size_t kPiece = 1 << 18;
constexpr la_int64_t kBlock = 512;    // of tar

}    // namespace

TarReader::TarReader(int descriptor, std::string name)
    : descriptor_(descriptor), name_(std::move(name)), piece_(kPiece), archive_(archive_read_new(), archive_read_free) {
    if (!archive_) throw std::bad_alloc();
    archive* reader = archive_.get();
    archive_read_support_filter_gzip(reader);
    archive_read_support_filter_bzip2(reader);
    archive_read_support_filter_xz(reader);
    archive_read_support_filter_lz4(reader);
    archive_read_support_filter_zstd(reader);
    archive_read_support_format_tar(reader);
    // Blocks of zeros do not end the stream, so nothing behind them is skipped unnoticed.
    if (archive_read_set_format_option(reader, "tar", "read_concatenated_archives", "1") != ARCHIVE_OK) fail();
    if (archive_read_open(reader, this, nullptr, readPiece, nullptr) != ARCHIVE_OK) fail();
}

TarEntry TarReader::next() {
    TarEntry entry = newTarEntry();
    const int status = archive_read_next_header2(archive_.get(), entry.get());
    if (status == ARCHIVE_OK || status == ARCHIVE_WARN) return entry;    // a warning is about a name's characters
    if (status != ARCHIVE_EOF) fail();
    requireEndMarker();
    const void* rest = nullptr;
    while (readPiece(archive_.get(), this, &rest) > 0) {
    }
    if (error_ != 0) fail();
    return nullptr;
}

// libarchive takes a stream that ends behind any member. tar's end marker is two blocks of zeros, or one by some
// programs.
void TarReader::requireEndMarker() {
    archive* reader = archive_.get();
    if (archive_filter_bytes(reader, 0) - archive_read_header_position(reader) < kBlock)
        throw std::runtime_error(name_ + " is cut: tar's end marker is missing");
}

void TarReader::append(std::vector<uint8_t>& bytes, size_t size) {
    const size_t end = bytes.size() + size;
    while (bytes.size() < end) {
        const size_t start = bytes.size();
        bytes.resize(std::min(end, start + kPiece));
        const la_ssize_t got = archive_read_data(archive_.get(), bytes.data() + start, bytes.size() - start);
        bytes.resize(start + static_cast<size_t>(std::max<la_ssize_t>(got, 0)));
        if (got < 0) fail();
        if (got == 0) return;
    }
}

void TarReader::fail() {
    if (error_ != 0) throw std::runtime_error(name_ + " cannot be read: " + std::strerror(error_));
    const char* reason = archive_error_string(archive_.get());
    throw std::runtime_error(name_ + " is cut, damaged or no tar: " + (reason ? reason : "unknown error"));
}

la_ssize_t TarReader::readPiece(archive* reader, void* self, const void** piece) {
    TarReader& tar = *static_cast<TarReader*>(self);
    ssize_t count = 0;
    do {
        count = read(tar.descriptor_, tar.piece_.data(), tar.piece_.size());
    } while (count < 0 && errno == EINTR && !stopRequested());
    if (count < 0) {
        tar.error_ = errno;
        archive_set_error(reader, errno, "cannot be read");
        return ARCHIVE_FATAL;
    }
    *piece = tar.piece_.data();
    tar.sum_.add(tar.piece_.data(), static_cast<size_t>(count));
    tar.size_ += static_cast<uint64_t>(count);
    return count;
}
