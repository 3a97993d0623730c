// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "option_value.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <filesystem>

namespace {

std::string range(int least, int most) { return std::to_string(least) + " to " + std::to_string(most); }

// A unit behind a number, as in "300dpi"; what holds more digits may mean another number.
bool isUnit(const std::string& text) {
    return std::none_of(text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c) != 0; });
}

bool isOneOf(const std::vector<std::string>& words, const std::string& word) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

}    // namespace

ValueCheck wholeNumber(int least, int most) {
    return [least, most](const std::string& text) {
        int value = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        const bool inRange = error == std::errc() && value >= least && value <= most;
        const std::string plain = std::to_string(value);
        if (inRange && plain == text) return std::string();
        const bool unitBehind = isUnit(text.substr(static_cast<size_t>(end - text.data())));
        return '"' + text + "\" is not a whole number from " + range(least, most) +
               (inRange && unitBehind ? "; write " + plain : "");
    };
}

ValueCheck number(int least, int most) {
    return [least, most](const std::string& text) {
        std::string point = text;
        std::replace(point.begin(), point.end(), ',', '.');
        char* end = nullptr;
        const double value = std::strtod(point.c_str(), &end);
        const auto length = static_cast<size_t>(end - point.c_str());
        const bool inRange = length > 0 && value >= least && value <= most;
        if (inRange && length == text.size() && point == text) return std::string();
        return '"' + text + "\" is not a number from " + range(least, most) +
               (inRange && isUnit(text.substr(length)) ? "; write " + point.substr(0, length) : "");
    };
}

ValueCheck oneOf(const std::vector<std::string>& words) {
    return [words](const std::string& word) {
        return isOneOf(words, word) ? std::string() : '"' + word + "\" is none of: " + joined(words, ", ");
    };
}

std::string joined(const std::vector<std::string>& words, const std::string& separator) {
    std::string list;
    for (const std::string& word : words) list += (list.empty() ? "" : separator) + word;
    return list;
}

ValueCheck endsIn(const std::vector<std::string>& endings) {
    return [endings](const std::string& file) {
        std::string ending = std::filesystem::path(file).extension().string();
        std::transform(ending.begin(), ending.end(), ending.begin(), [](unsigned char c) { return std::tolower(c); });
        if (isOneOf(endings, ending)) return std::string();
        return file + " does not end in " + endings.front() + "; the option needs the name of its result";
    };
}
