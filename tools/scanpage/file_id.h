// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Which file a name leads to, whatever the name.
#pragma once

#include <sys/stat.h>

#include <mutex>
#include <set>
#include <utility>

using FileId = std::pair<dev_t, ino_t>;

inline FileId idOf(const struct stat& status) { return {status.st_dev, status.st_ino}; }

// The files that a run reads. They are never replaced.
class InputIds {
public:
    void add(const FileId& id) {
        const std::lock_guard<std::mutex> lock(mutex_);
        ids_.insert(id);
    }

    bool contains(const FileId& id) const {
        const std::lock_guard<std::mutex> lock(mutex_);
        return ids_.count(id) > 0;
    }

private:
    mutable std::mutex mutex_;
    std::set<FileId> ids_;
};
