// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "output_folder.h"

#include <fcntl.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace {

std::string reason() { return std::string(": ") + std::strerror(errno); }

// The names of new folders are on disk after this.
void syncFolder(int folder) {
    // Some file systems keep names without being asked, and cannot be asked.
    if (fsync(folder) != 0 && errno != EINVAL) throw std::system_error(errno, std::generic_category());
}

Descriptor openFolder(int start, const std::string& path) {
    return Descriptor(openat(start, path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

bool isFolderAt(int start, const std::string& path) {
    struct stat status {};
    return fstatat(start, path.c_str(), &status, 0) == 0 && S_ISDIR(status.st_mode);
}

std::string folderOf(const std::string& path) {
    const std::string folder = std::filesystem::path(path).parent_path().string();
    return folder.empty() ? "." : folder;
}

// The folders of the path that are missing, from a start on.
void makeFolders(int start, const std::string& path) {
    for (size_t end = 0; end != std::string::npos;) {
        end = path.find('/', end + 1);
        const std::string part = path.substr(0, end);
        if (isFolderAt(start, part)) continue;
        if (mkdirat(start, part.c_str(), 0777) == 0)
            syncFolder(openFolder(start, folderOf(part)).get());
        else if (errno != EEXIST)
            throw std::runtime_error("the folder " + part + " cannot be made" + reason());
        else if (!isFolderAt(start, part))
            throw std::runtime_error(part + " is a file, but the results need a folder; choose another name");
    }
}

}    // namespace

OutputFolder::OutputFolder(std::string path, Descriptor descriptor, bool isPlanned)
    : isPlanned_(isPlanned), path_(std::move(path)), descriptor_(std::move(descriptor)) {
    if (!descriptor_.isOpen() && (!isPlanned_ || errno != ENOENT))
        throw std::runtime_error("the folder " + path_ + " cannot be opened" + reason());
}

OutputFolder::OutputFolder(const std::string& path) : OutputFolder(path, openFolder(AT_FDCWD, path)) {}

OutputFolder OutputFolder::made(const std::string& path) {
    makeFolders(AT_FDCWD, path);
    return OutputFolder(path);
}

OutputFolder OutputFolder::below(const std::string& path) const {
    if (!isPlanned_) makeFolders(descriptor_.get(), path);
    if (!descriptor_.isOpen()) return planned(pathOf(path));
    return {pathOf(path), openFolder(descriptor_.get(), path), isPlanned_};
}

OutputFolder OutputFolder::planned(const std::string& path) { return {path, openFolder(AT_FDCWD, path), true}; }

std::optional<struct stat> OutputFolder::find(const std::string& name) const {
    struct stat status {};
    if (!descriptor_.isOpen()) return std::nullopt;
    if (fstatat(descriptor_.get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0) return status;
    if (errno == ENOENT) return std::nullopt;
    throw std::runtime_error(pathOf(name) + " cannot be written" + reason());
}

Descriptor OutputFolder::openForReading(const std::string& name) const {
    Descriptor file(openat(descriptor_.get(), name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status {};
    if (file.isOpen() && (fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode))) return Descriptor();
    return file;
}

void OutputFolder::write(const std::string& name, const std::vector<uint8_t>& bytes,
                         const std::optional<FileId>& replaced) const {
    write(name, replaced, [&](UnnamedFile& file) { file.write(bytes); });
}

template <class Work>
auto OutputFolder::explained(const std::string& name, const Work& work) const {
    try {
        return work();
    } catch (const std::system_error& e) {
        throw std::runtime_error(pathOf(name) + " cannot be written: " + std::strerror(e.code().value()));
    }
}

void OutputFolder::write(const std::string& name, const std::optional<FileId>& replaced,
                         const std::function<void(UnnamedFile&)>& fill) const {
    explained(name, [&] {
        UnnamedFile file(descriptor_.get());
        fill(file);
        nameFile(file, name, replaced);
    });
}

UnnamedFile OutputFolder::create(const std::string& name) const {
    return explained(name, [&] { return UnnamedFile(descriptor_.get()); });
}

void OutputFolder::publish(UnnamedFile& file, const std::string& name, const std::optional<FileId>& replaced) const {
    explained(name, [&] { nameFile(file, name, replaced); });
}

void OutputFolder::nameFile(UnnamedFile& file, const std::string& name, const std::optional<FileId>& replaced) const {
    file.sync();
    if (replaced) {
        checkStillThere(name, *replaced);
        file.replace(name);
    } else {
        file.giveName(name);
    }
    sync();
}

void OutputFolder::checkStillThere(const std::string& name, const FileId& replaced) const {
    const std::optional<struct stat> there = find(name);
    if (!there || idOf(*there) != replaced) throw std::system_error(EEXIST, std::generic_category());
}

// The name is on disk after this.
void OutputFolder::sync() const { syncFolder(descriptor_.get()); }

OutputPlace placeOf(const std::string& path) {
    return {OutputFolder(folderOf(path)), std::filesystem::path(path).filename().string()};
}
