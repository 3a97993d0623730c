// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "tar_writer.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <stdexcept>

namespace {

constexpr int kPiece = 1 << 18;

}    // namespace

Compression compressionOf(const std::string& file) {
    const std::string ending = std::filesystem::path(file).extension().string();
    if (ending == ".gz" || ending == ".tgz") return Compression::kGzip;
    if (ending == ".zst" || ending == ".tzst") return Compression::kZstd;
    return Compression::kNone;
}

TarWriter::TarWriter(int descriptor, std::string name, Compression compression)
    : descriptor_(descriptor), name_(std::move(name)), archive_(archive_write_new(), archive_write_free) {
    if (!archive_) throw std::bad_alloc();
    archive* writer = archive_.get();
    int status = archive_write_set_format_pax(writer);    // keeps long names and parts of seconds
    if (compression == Compression::kGzip) {
        status = std::min(status, archive_write_add_filter_gzip(writer));
        status = std::min(status, archive_write_set_filter_option(writer, "gzip", "timestamp", nullptr));
    }
    if (compression == Compression::kZstd) status = std::min(status, archive_write_add_filter_zstd(writer));
    archive_write_set_bytes_per_block(writer, kPiece);
    archive_write_set_bytes_in_last_block(writer, 1);
    if (status != ARCHIVE_OK || archive_write_open(writer, this, nullptr, writePiece, nullptr) != ARCHIVE_OK) fail();
}

// Freeing a stream that is neither finished nor given up would finish it.
TarWriter::~TarWriter() { archive_write_fail(archive_.get()); }

void TarWriter::begin(archive_entry* entry) {
    const int status = archive_write_header(archive_.get(), entry);
    if (status != ARCHIVE_OK && status != ARCHIVE_WARN) fail();
}

void TarWriter::write(const void* bytes, size_t size) {
    if (archive_write_data(archive_.get(), bytes, size) != static_cast<la_ssize_t>(size)) fail();
}

void TarWriter::finish() {
    if (archive_write_close(archive_.get()) != ARCHIVE_OK) fail();
}

void TarWriter::fail() {
    const char* reason = error_ != 0 ? std::strerror(error_) : archive_error_string(archive_.get());
    throw std::runtime_error(name_ + " cannot be written: " + (reason ? reason : "unknown error"));
}

la_ssize_t TarWriter::writePiece(archive* writer, void* self, const void* bytes, size_t size) {
    TarWriter& tar = *static_cast<TarWriter*>(self);
    const auto* from = static_cast<const uint8_t*>(bytes);
    for (size_t written = 0; written < size;) {
        const ssize_t count = ::write(tar.descriptor_, from + written, size - written);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) {
            tar.error_ = errno;
            archive_set_error(writer, errno, "cannot be written");
            return ARCHIVE_FATAL;
        }
        written += static_cast<size_t>(count);
    }
    tar.sum_.add(bytes, size);
    tar.size_ += size;
    return static_cast<la_ssize_t>(size);
}
