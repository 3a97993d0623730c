// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "tar_entry.h"

#include <stdexcept>

std::string nameOf(archive_entry* entry) {
    const char* name = archive_entry_pathname(entry);
    if (!name) throw std::runtime_error("a member has no name");
    return name;
}

bool isFile(archive_entry* entry) {
    return archive_entry_filetype(entry) == AE_IFREG && !archive_entry_hardlink(entry);
}

TarEntry fileLike(archive_entry* entry, const std::string& name, size_t size) {
    TarEntry file = newTarEntry();
    archive_entry_set_pathname(file.get(), name.c_str());
    archive_entry_set_filetype(file.get(), AE_IFREG);
    archive_entry_set_perm(file.get(), archive_entry_perm(entry));
    archive_entry_set_size(file.get(), static_cast<la_int64_t>(size));
    archive_entry_set_mtime(file.get(), archive_entry_mtime(entry), archive_entry_mtime_nsec(entry));
    archive_entry_set_uid(file.get(), archive_entry_uid(entry));
    archive_entry_set_gid(file.get(), archive_entry_gid(entry));
    if (const char* user = archive_entry_uname(entry)) archive_entry_set_uname(file.get(), user);
    if (const char* group = archive_entry_gname(entry)) archive_entry_set_gname(file.get(), group);
    return file;
}
