// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// All pages in one file: a PDF, a TIFF, or both.
#pragma once

#include <map>
#include <mutex>

#include "results.h"
#include "spool.h"

// Where a page comes in a book: its file in the order of the input, and its number in the file.
using PageOrder = std::pair<size_t, size_t>;

// A page without its bytes, which are in the spool.
struct BookPage {
    PageStream page;
    Spool::Place place;
};
using BookPages = std::map<PageOrder, BookPage>;

class Book {
public:
    // An empty name asks for no such file. Throws if one may not be written. Only earlier books are replaced.
    Book(const std::string& pdf, const std::string& tiff, const Rules& rules);

    // From any thread and in any order. Throws if the disk refuses the page.
    void add(const PageOrder& order, PageStream page);

    // The files get their names when they are complete.
    void write();

    size_t pages() const { return pages_.size(); }

private:
    using Writer = void (*)(const BookPages&, const Spool&, UnnamedFile&, const std::string&, const std::string&);
    void writeFile(const OutputPlace& file, Writer writer) const;
    std::optional<OutputPlace> open(const std::string& path) const;

    Rules rules_;
    std::optional<OutputPlace> pdf_, tiff_;
    Spool spool_;
    std::mutex mutex_;
    BookPages pages_;
};

// These write to the file; `mark` goes into a comment of it.
void writePdf(const BookPages& pages, const Spool& spool, UnnamedFile& file, const std::string& title,
              const std::string& mark);
void writeTiff(const BookPages& pages, const Spool& spool, UnnamedFile& file, const std::string& title,
               const std::string& mark);
