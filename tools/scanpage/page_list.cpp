// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "page_list.h"

#include <stdexcept>

#include "stop.h"

PageList::PageList(std::vector<PageName> pages, const std::string& list, char separator)
    : pages_(std::move(pages)), separator_(separator), count_(pages_.size()) {
    if (list.empty()) return;
    // A list in a file replaces standard input, because a request to stop ends reading from standard input.
    if (list != "-" && !std::freopen(list.c_str(), "r", stdin)) throw std::runtime_error(list + " cannot be opened");
    list_ = stdin;
    const long start = std::ftell(list_);
    if (start < 0) {
        count_ = 0;
        return;
    }
    for (std::string name; nextOfList(name);) ++count_;
    std::fseek(list_, start, SEEK_SET);
}

bool PageList::next(PageName& page) {
    if (used_ < pages_.size()) {
        page = pages_[used_++];
        return true;
    }
    page.folder.clear();
    return list_ && nextOfList(page.file);
}

// Skips empty lines. A last name without its separator counts. Names with NUL are rejected, because opening them would
// use only the part before it.
bool PageList::nextOfList(std::string& name) {
    name.clear();
    for (int c = std::getc(list_); c != EOF; c = std::getc(list_)) {
        if (c == 0 && separator_ != 0)
            throw std::runtime_error("the list of pages holds a NUL character; is --null missing?");
        if (c != static_cast<unsigned char>(separator_))
            name += static_cast<char>(c);
        else if (!name.empty())
            return true;
    }
    if (std::ferror(list_) != 0 && !stopRequested()) throw std::runtime_error("the list of pages cannot be read");
    return !name.empty();
}
