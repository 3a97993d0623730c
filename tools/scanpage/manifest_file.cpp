// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "manifest_file.h"

#include <cstring>
#include <system_error>

namespace {

Existing earlierManifest(const OutputPlace& place, const std::optional<Manifest>& earlier, const Rules& rules) {
    Existing existing = identify(place.folder, place.name);
    existing.mayBeRemade = earlier.has_value();
    requireReplaceable(existing, place.path(), rules);
    return existing;
}

}    // namespace

ManifestFile::ManifestFile(const std::string& path, const ManifestHead& head, const Rules& rules)
    : place_(placeOf(path)),
      rules_(rules),
      earlier_(readManifest(path)),
      head_(lineOf(head)),
      file_(place_.folder.create(place_.name)) {
    earlierManifest(place_, earlier_, rules_);
    append(head_);
}

void ManifestFile::add(const MemberLine& member) { append(lineOf(member)); }

void ManifestFile::announce() {
    const Existing existing = earlierManifest(place_, earlier_, rules_);
    place_.folder.write(place_.name, {head_.begin(), head_.end()}, existing.id);
    earlier_ = readManifest(place_.path());
}

void ManifestFile::finish(const ShardTotals& totals) {
    append(lineOf(totals));
    place_.folder.publish(file_, place_.name, earlierManifest(place_, earlier_, rules_).id);
}

void ManifestFile::append(const std::string& line) {
    try {
        file_.write(line);
    } catch (const std::system_error& e) {
        throw std::runtime_error(place_.path() + " cannot be written: " + std::strerror(e.code().value()));
    }
}
