// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "result_mark.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <string_view>

#include "sum.h"

namespace {

constexpr std::string_view kStart = "scanpage: page ";
constexpr std::string_view kBeforeSum = ", sum ";
constexpr std::string_view kNoSum = "0000000000000000";
constexpr std::string_view kPng = "\x89PNG";
constexpr std::string_view::size_type kPngChecksum = 4;    // of the comment, behind its text

std::string digitsOf(uint64_t value) {
    char text[17];
    std::snprintf(text, sizeof(text), "%016llx", static_cast<unsigned long long>(value));
    return text;
}

std::string_view textOf(const std::vector<uint8_t>& file) {
    return {reinterpret_cast<const char*>(file.data()), file.size()};
}

// Where the line begins and where the digits of its sum do.
struct Place {
    size_t start, digits;
};

bool findMark(std::string_view file, Place& place) {
    place.start = file.find(kStart);
    if (place.start == std::string_view::npos) return false;
    place.digits = file.find(kBeforeSum, place.start);
    if (place.digits == std::string_view::npos) return false;
    place.digits += kBeforeSum.size();
    return place.digits + kNoSum.size() <= file.size();
}

// In a PNG a checksum of the comment follows the digits and depends on them.
std::string sealedSum(std::string_view file, const Place& place, const std::string& name) {
    const size_t behind = place.digits + kNoSum.size() + (file.substr(0, kPng.size()) == kPng ? kPngChecksum : 0);
    Sum sum;
    sum.add(name.data(), name.size() + 1);
    sum.add(file.data(), place.digits);
    sum.add(file.data() + std::min(behind, file.size()), file.size() - std::min(behind, file.size()));
    return digitsOf(sum.value());
}

}    // namespace

std::string resultMark(uint64_t pageSum, const std::string& options) {
    return std::string(kStart) + digitsOf(pageSum) + ", options " + options + std::string(kBeforeSum) +
           std::string(kNoSum);
}

void seal(std::vector<uint8_t>& file, const std::string& name) {
    Place place{};
    if (!findMark(textOf(file), place)) return;
    const std::string sum = sealedSum(textOf(file), place, name);
    std::copy(sum.begin(), sum.end(), file.begin() + static_cast<ptrdiff_t>(place.digits));
}

std::string markOf(const std::vector<uint8_t>& file, const std::string& name) {
    const std::string_view text = textOf(file);
    Place place{};
    if (!findMark(text, place)) return {};
    if (text.substr(place.digits, kNoSum.size()) != sealedSum(text, place, name)) return {};
    return std::string(text.substr(place.start, place.digits - place.start)) + std::string(kNoSum);
}
