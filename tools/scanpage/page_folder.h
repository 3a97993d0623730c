// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The pages in a folder.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "file_id.h"

struct PageName {
    std::string file;
    std::string folder;    // below the folder of the results; empty: it itself
};

bool isFolder(const std::string& path);

// Files whose names end as those of pages do, and do not begin with a dot. They are sorted, numbers in names by their
// value: 2 before 10. With `deep` also those of the folders below, except one: that of the results. Throws if there are
// no pages.
std::vector<PageName> pagesIn(const std::string& folder, bool deep, const std::optional<FileId>& results);
