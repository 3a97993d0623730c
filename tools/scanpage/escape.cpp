// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "escape.h"

#include <string_view>

namespace {

// Length of the UTF-8 sequence at the start of the text; 0 if it is ASCII, malformed or a control character.
size_t printableSequence(std::string_view text) {
    const auto first = static_cast<unsigned char>(text[0]);
    const size_t length = first < 0xC0 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF8 ? 4 : 0;
    if (length == 0 || length > text.size()) return 0;
    unsigned code = first & (0x7FU >> length);
    for (size_t i = 1; i < length; ++i) {
        const auto next = static_cast<unsigned char>(text[i]);
        if ((next & 0xC0) != 0x80) return 0;
        code = code << 6 | (next & 0x3FU);
    }
    constexpr unsigned kFirst[] = {0, 0, 0xA0, 0x800, 0x10000};    // of each length; 80 to 9F are controls
    const bool surrogate = code >= 0xD800 && code < 0xE000;
    return code >= kFirst[length] && code < 0x110000 && !surrogate ? length : 0;
}

std::string escapedByte(char c) {
    switch (c) {
        case '\\': return "\\\\";
        case '\t': return "\\t";
        case '\n': return "\\n";
        case '\r': return "\\r";
        default: break;
    }
    const auto code = static_cast<unsigned char>(c);
    if (code >= 0x20 && code < 0x7F) return {c};
    constexpr char kDigits[] = "0123456789abcdef";
    return {'\\', 'x', kDigits[code >> 4], kDigits[code & 15]};
}

}    // namespace

std::string escaped(const std::string& name) {
    std::string text;
    for (size_t i = 0; i < name.size();) {
        const size_t length = printableSequence(std::string_view(name).substr(i));
        text += length > 0 ? name.substr(i, length) : escapedByte(name[i]);
        i += length > 0 ? length : 1;
    }
    return text;
}
