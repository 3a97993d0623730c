// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The header of a member of a tar stream.
#pragma once

#include <archive_entry.h>

#include <memory>
#include <new>
#include <string>

struct TarEntryDeleter {
    void operator()(archive_entry* entry) const { archive_entry_free(entry); }
};
using TarEntry = std::unique_ptr<archive_entry, TarEntryDeleter>;

inline TarEntry newTarEntry() {
    TarEntry entry(archive_entry_new());
    if (!entry) throw std::bad_alloc();
    return entry;
}

// Bytes, as they stand in the stream. They are only passed on, never used as a path.
std::string nameOf(archive_entry* entry);

// A file, and no folder, link or device.
bool isFile(archive_entry* entry);

// A file of another name and size in the place of this one: with its times, permissions and owner.
TarEntry fileLike(archive_entry* entry, const std::string& name, size_t size);
