// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "page_folder.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <stdexcept>

#include "page_file.h"

namespace {

namespace fs = std::filesystem;

bool isHidden(const fs::path& path) { return path.filename().string().front() == '.'; }

bool isThat(const fs::path& path, const std::optional<FileId>& wanted) {
    struct stat status {};
    return wanted && stat(path.c_str(), &status) == 0 && idOf(status) == *wanted;
}

// By their paths below the folder. Links to folders are not followed, since they may lead in a circle.
std::vector<std::string> pathsIn(const fs::path& folder, bool deep, const std::optional<FileId>& results) {
    std::vector<std::string> paths;
    for (fs::recursive_directory_iterator entry(folder), end; entry != end; ++entry) {
        const fs::path& path = entry->path();
        const bool skipped = isHidden(path) || isThat(path, results);
        if (!deep || skipped) entry.disable_recursion_pending();
        if (!skipped && isNamedLikePage(path.string()) && !entry->is_directory())
            paths.push_back(path.lexically_relative(folder).string());
    }
    return paths;
}

}    // namespace

bool isFolder(const std::string& path) {
    std::error_code ignored;
    return fs::is_directory(path, ignored);
}

std::vector<PageName> pagesIn(const std::string& folder, bool deep, const std::optional<FileId>& results) try {
    std::vector<std::string> paths = pathsIn(folder, deep, results);
    std::sort(paths.begin(), paths.end(), [](const std::string& one, const std::string& other) {
        const int order = strverscmp(one.c_str(), other.c_str());
        return order != 0 ? order < 0 : one < other;
    });
    if (paths.empty())
        throw std::runtime_error("no pages in the folder " + folder + ": none ends in .jpg, .png, .tif or .pnm" +
                                 (deep ? "" : "; --recursive reads its subfolders"));
    std::vector<PageName> pages;
    pages.reserve(paths.size());
    for (const std::string& path : paths) pages.push_back({fs::path(folder) / path, fs::path(path).parent_path()});
    return pages;
} catch (const fs::filesystem_error& e) {
    throw std::runtime_error("the folder " + folder + " cannot be read: " + e.code().message());
}
