// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "book.h"

#include <filesystem>

#include "result_mark.h"

Book::Book(const std::string& pdf, const std::string& tiff, const Rules& rules)
    : rules_(rules), pdf_(open(pdf)), tiff_(open(tiff)), spool_((pdf_ ? pdf_ : tiff_)->folder.path()) {}

std::optional<OutputPlace> Book::open(const std::string& path) const {
    if (path.empty()) return std::nullopt;
    return placeOfBook(path, rules_);
}

void Book::add(const PageOrder& order, PageStream page) {
    const std::lock_guard<std::mutex> lock(mutex_);
    const Spool::Place place = spool_.append(page.bytes);
    page.bytes = std::vector<uint8_t>();    // "= {}" would keep the memory
    pages_.emplace(order, BookPage{std::move(page), place});
}

void Book::write() {
    if (pages_.empty()) throw std::runtime_error("there are no pages for the PDF or TIFF");
    if (pdf_) writeFile(*pdf_, writePdf);
    if (tiff_) writeFile(*tiff_, writeTiff);
}

void Book::writeFile(const OutputPlace& file, Writer writer) const {
    const Existing existing = examine(file.folder, file.name);
    requireEarlierBook(existing, file.path(), rules_);
    file.folder.write(file.name, existing.id, [&](UnnamedFile& unnamed) {
        const std::string title = std::filesystem::path(file.name).stem().string();
        writer(pages_, spool_, unnamed, title, resultMark(0, "book"));
        seal(unnamed.descriptor(), file.name);
    });
}
