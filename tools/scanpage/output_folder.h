// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The folder that results are written to.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "descriptor.h"
#include "file_id.h"
#include "unnamed_file.h"

// It is opened once, and every file is reached through it: it stays the same folder even if its name is given to
// another.
class OutputFolder {
public:
    explicit OutputFolder(const std::string& path);

    // Makes the folder, and those above it, if they are missing.
    static OutputFolder made(const std::string& path);
    OutputFolder below(const std::string& path) const;

    // It may be missing, and is not made; nor are folders below it.
    static OutputFolder planned(const std::string& path);

    // Of whatever has this name; a link is not followed.
    std::optional<struct stat> find(const std::string& name) const;

    // A regular file, for reading; closed if it cannot be opened.
    Descriptor openForReading(const std::string& name) const;

    // Writes a file that has its name only once it is complete and on disk. No other file than `replaced` is replaced.
    void write(const std::string& name, const std::vector<uint8_t>& bytes, const std::optional<FileId>& replaced) const;

    // `fill` writes the contents.
    void write(const std::string& name, const std::optional<FileId>& replaced,
               const std::function<void(UnnamedFile&)>& fill) const;

    // The steps of writing: a new file, and its name.
    UnnamedFile create(const std::string& name) const;
    void publish(UnnamedFile& file, const std::string& name, const std::optional<FileId>& replaced) const;

    // The path of a file is for messages.
    const std::string& path() const { return path_; }
    std::string pathOf(const std::string& name) const { return path_ + "/" + name; }

private:
    OutputFolder(std::string path, Descriptor descriptor, bool isPlanned = false);
    template <class Work>
    auto explained(const std::string& name, const Work& work) const;
    void nameFile(UnnamedFile& file, const std::string& name, const std::optional<FileId>& replaced) const;
    void checkStillThere(const std::string& name, const FileId& replaced) const;
    void sync() const;

    bool isPlanned_ = false;
    std::string path_;
    Descriptor descriptor_;
};

// A file to be written.
struct OutputPlace {
    OutputFolder folder;
    std::string name;

    std::string path() const { return folder.pathOf(name); }
};
OutputPlace placeOf(const std::string& path);
