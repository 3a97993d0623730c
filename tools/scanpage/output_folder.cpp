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

}    // namespace

OutputFolder::OutputFolder(const std::string& path)
    : path_(path), descriptor_(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (!descriptor_.isOpen()) throw std::runtime_error("the folder " + path + " cannot be opened" + reason());
}

std::optional<struct stat> OutputFolder::find(const std::string& name) const {
    struct stat status {};
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

// The name is on disk after this. Some file systems keep names without being asked, and cannot be asked.
void OutputFolder::sync() const {
    if (fsync(descriptor_.get()) != 0 && errno != EINVAL) throw std::system_error(errno, std::generic_category());
}

OutputPlace placeOf(const std::string& path) {
    const std::filesystem::path file(path);
    const std::string folder = file.parent_path().string();
    return {OutputFolder(folder.empty() ? "." : folder), file.filename().string()};
}
