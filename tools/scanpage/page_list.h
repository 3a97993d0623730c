// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The pages to process: those of the command line, then those of a list that is read as needed.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "page_folder.h"

class PageList {
public:
    // The list is a file, or "-" for standard input; empty for none. Names in it end with the separator.
    PageList(std::vector<PageName> pages, const std::string& list, char separator);

    // False at the end.
    bool next(PageName& page);

    // 0 if it is not known before the end, as for a pipe.
    size_t count() const { return count_; }

private:
    bool nextOfList(std::string& name);

    std::vector<PageName> pages_;
    size_t used_ = 0;
    char separator_;
    std::FILE* list_ = nullptr;
    size_t count_ = 0;
};
