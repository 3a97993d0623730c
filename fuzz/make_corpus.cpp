// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// make_corpus FOLDER: writes the initial inputs of the targets. For the reader, valid streams of every kind, hostile
// ones and a dictionary of markers; for the others, random bytes.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <random>
#include <string>
#include <vector>

#include "support/jpeg_compression.h"

namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<uint8_t>;

constexpr int kWidth = 21;
constexpr int kHeight = 19;

Bytes raster(int channels) {
    Bytes pixels(static_cast<size_t>(kWidth * kHeight * channels));
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<uint8_t>(i / 7 * 29 % 251);
    return pixels;
}

// Compresses with libjpeg, with the settings of `configure`.
template <class Configure>
Bytes encode(int channels, J_COLOR_SPACE space, Configure configure) {
    const Bytes pixels = raster(channels);
    return compressJpeg({pixels.data(), ptrdiff_t{kWidth} * channels, kWidth, kHeight, channels, space},
                        [&configure](jpeg_compress_struct& cinfo) {
                            jpeg_set_quality(&cinfo, 30, TRUE);
                            configure(cinfo);
                        });
}

Bytes segment(uint8_t marker, const Bytes& payload) {
    const size_t length = payload.size() + 2;
    Bytes bytes = {0xFF, marker, static_cast<uint8_t>(length / 256), static_cast<uint8_t>(length % 256)};
    bytes.insert(bytes.end(), payload.begin(), payload.end());
    return bytes;
}

Bytes chain(std::initializer_list<Bytes> parts) {
    Bytes all;
    for (const Bytes& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

const Bytes kStart = {0xFF, 0xD8};
const Bytes kEnd = {0xFF, 0xD9};

// Inserts after the start of the image.
Bytes with(const Bytes& stream, const Bytes& inserted) {
    return chain({kStart, inserted, Bytes(stream.begin() + 2, stream.end())});
}

Bytes exif(bool littleEndian, uint8_t orientation) {
    Bytes payload = {'E',  'x',  'i',  'f',  0, 0, 'M', 'M', 0, 42,          0, 0, 0, 8,
                     0,    2,    0x01, 0x0F, 0, 2, 0,   0,   0, 6,           0, 0, 0, 26,    // make
                     0x01, 0x12, 0,    3,    0, 0, 0,   1,   0, orientation, 0, 0};
    if (littleEndian)
        payload = {'E', 'x', 'i', 'f', 0,  0, 'I', 'I', 42,   0,    8, 0, 0, 0, 2, 0, 0x0F,        0x01, 2, 0,
                   6,   0,   0,   0,   26, 0, 0,   0,   0x12, 0x01, 3, 0, 1, 0, 0, 0, orientation, 0,    0, 0};
    return payload;
}

size_t positionOf(const Bytes& stream, uint8_t marker) {
    for (size_t i = 0; i + 1 < stream.size(); ++i)
        if (stream[i] == 0xFF && stream[i + 1] == marker) return i;
    return stream.size();
}

Bytes changed(Bytes stream, size_t position, uint8_t value) {
    stream.at(position) = value;
    return stream;
}

class Folder {
public:
    explicit Folder(const fs::path& path) : path_(path) { fs::create_directories(path); }

    void add(const std::string& name, const Bytes& bytes) const {
        std::ofstream(path_ / name, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }

private:
    fs::path path_;
};

void addGoodStreams(const Folder& folder) {
    const auto asIs = [](jpeg_compress_struct&) {};
    const Bytes colour = encode(3, JCS_RGB, asIs);
    folder.add("grey", encode(1, JCS_GRAYSCALE, asIs));
    folder.add("colour", colour);
    folder.add("red_green_blue", encode(3, JCS_RGB, [](auto& c) { jpeg_set_colorspace(&c, JCS_RGB); }));
    folder.add("four_inks", encode(4, JCS_CMYK, asIs));
    folder.add("four_inks_as_ycck", encode(4, JCS_CMYK, [](auto& c) { jpeg_set_colorspace(&c, JCS_YCCK); }));
    folder.add("progressive", encode(3, JCS_RGB, [](auto& c) { jpeg_simple_progression(&c); }));
    folder.add("progressive_grey", encode(1, JCS_GRAYSCALE, [](auto& c) { jpeg_simple_progression(&c); }));
    folder.add("restarting", encode(3, JCS_RGB, [](auto& c) { c.restart_interval = 1; }));
    folder.add("arithmetic", encode(3, JCS_RGB, [](auto& c) { c.arith_code = TRUE; }));
    for (uint8_t orientation = 0; orientation <= 9; ++orientation) {
        const std::string name = "orientation_" + std::to_string(orientation);
        folder.add(name, with(colour, segment(0xE1, exif(orientation % 2 != 0, orientation))));
    }
}

// A grey progressive stream with one scan per coefficient and, for up to `refined` of them, a second one.
Bytes scanned(int refined) {
    std::vector<jpeg_scan_info> script = {{1, {0}, 0, 0, 0, 0}};
    for (int k = 1; k < 64; ++k) script.push_back({1, {0}, k, k, 0, k <= refined ? 1 : 0});
    for (int k = 1; k <= refined; ++k) script.push_back({1, {0}, k, k, 1, 0});
    return encode(1, JCS_GRAYSCALE, [&script](auto& c) {
        c.scan_info = script.data();
        c.num_scans = static_cast<int>(script.size());
    });
}

void addHostileStreams(const Folder& folder) {
    const Bytes hugeFrame = segment(0xC0, {8, 0xFF, 0xDC, 0xFF, 0xDC, 1, 0, 0x11, 0});
    const Bytes scan = segment(0xDA, {1, 0, 0, 0, 63, 0});
    folder.add("claims_65500_x_65500", chain({kStart, hugeFrame, scan, kEnd}));
    for (const int side : {11000, 26000, 32768, 32769}) {
        const auto high = static_cast<uint8_t>(side / 256);
        const auto low = static_cast<uint8_t>(side % 256);
        const Bytes frame = segment(0xC2, {8, high, low, high, low, 3, 1, 0x22, 0, 2, 0x11, 0, 3, 0x11, 0});
        folder.add("claims_" + std::to_string(side), chain({kStart, frame, scan, kEnd}));
    }
    // A grey page that fits in the memory limit, while in colour it would not.
    const Bytes grey = encode(1, JCS_GRAYSCALE, [](auto&) {});
    Bytes large = grey;
    for (const size_t digit : {5U, 7U}) large = changed(large, positionOf(grey, 0xC0) + digit, 0x0D);
    folder.add("grey_claims_3347", large);
    folder.add("hundred_scans", scanned(36));
    folder.add("hundred_and_one_scans", scanned(37));
    Bytes bomb = chain({kStart, segment(0xC2, {8, 0x20, 0, 0x20, 0, 1, 0, 0x11, 0})});
    for (int i = 0; i < 300; ++i) bomb = chain({bomb, segment(0xDA, {1, 0, 0, 1, 63, 0})});
    folder.add("bomb_of_scans", chain({bomb, kEnd}));

    const Bytes colour = encode(3, JCS_RGB, [](auto&) {});
    const Bytes turned = with(colour, segment(0xE1, exif(false, 6)));
    for (const auto& [name, stream] : {std::pair{"colour", colour}, {"turned", turned}}) {
        // In the middle of each segment, and at both ends of the coded data.
        size_t at = 2;
        for (int part = 0; at + 4 < stream.size() && stream[at] == 0xFF; ++part) {
            const size_t length = 2 + size_t{stream[at + 2]} * 256 + stream[at + 3];
            const auto cut = static_cast<ptrdiff_t>(at + std::min(length / 2, stream.size() - at));
            folder.add(std::string(name) + "_cut_" + std::to_string(part), Bytes(stream.begin(), stream.begin() + cut));
            at += length;
        }
        folder.add(std::string(name) + "_cut_behind_header",
                   Bytes(stream.begin(), stream.begin() + static_cast<ptrdiff_t>(at)));
        folder.add(std::string(name) + "_cut_at_end", Bytes(stream.begin(), stream.end() - 9));
    }

    const size_t huffman = positionOf(colour, 0xC4);
    folder.add("too_many_codes", changed(colour, huffman + 5, 0xFF));
    folder.add("table_number_too_high", changed(colour, huffman + 4, 0x17));
    const size_t quantisation = positionOf(colour, 0xDB);
    folder.add("quantised_by_0", changed(colour, quantisation + 5, 0));
    folder.add("table_missing", changed(colour, quantisation + 4, 3));
    folder.add("segment_too_long", changed(colour, quantisation + 2, 0x7F));
    folder.add("segment_too_short", changed(colour, quantisation + 3, 1));
    const size_t frame = positionOf(colour, 0xC0);
    folder.add("sampling_of_0", changed(colour, frame + 11, 0));
    folder.add("sampling_of_15", changed(colour, frame + 11, 0xFF));
    folder.add("12_bits", changed(colour, frame + 4, 12));
    folder.add("no_rows", changed(changed(colour, frame + 5, 0), frame + 6, 0));
    folder.add("two_components", changed(colour, frame + 9, 2));
    folder.add("lossless", changed(colour, frame + 1, 0xC3));
    folder.add("scan_of_unknown_component", changed(colour, positionOf(colour, 0xDA) + 5, 77));

    folder.add("exif_without_directory", with(colour, segment(0xE1, {'E', 'x', 'i', 'f', 0, 0, 'M', 'M', 0, 42})));
    folder.add("exif_directory_far", with(colour, segment(0xE1, changed(exif(false, 6), 10, 0x7F))));
    folder.add("exif_text_far", with(colour, segment(0xE1, changed(exif(false, 6), 24, 0x7F))));
    folder.add("exif_many_entries", with(colour, segment(0xE1, changed(exif(true, 6), 15, 0xFF))));
    folder.add("exif_empty", with(colour, segment(0xE1, {})));
    folder.add("exif_bogus_length", with(colour, {0xFF, 0xE1, 0, 1}));

    folder.add("png", {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n', 0, 0, 0, 13, 'I', 'H', 'D', 'R',
                       0,    0,   0,   9,   0,    0,    0,    9,    8, 2, 0, 0,  0,   0,   0,   0});
    folder.add("bmp",
               {'B', 'M', 62, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0, 0, 40, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 24, 0});
    folder.add("tiff", {'I', 'I', 42, 0, 8, 0, 0, 0, 1, 0, 0, 1, 4, 0, 1, 0, 0, 0, 9, 0, 0, 0});
    folder.add("three_bytes", {0xFF, 0xD8, 0xFF});
}

void addDictionary(const fs::path& path) {
    std::ofstream file(path);
    for (const int marker : {0xC0, 0xC1, 0xC2, 0xC4, 0xC9, 0xCA, 0xCC, 0xD0, 0xD7, 0xD8, 0xD9, 0xDA, 0xDB, 0xDC, 0xDD,
                             0xE0, 0xE1, 0xEE, 0xFE}) {
        char line[16];
        std::snprintf(line, sizeof(line), "\"\\xFF\\x%02X\"\n", marker);
        file << line;
    }
    for (const char* text : {"JFIF\\x00", "Exif\\x00\\x00MM\\x00\\x2A", "Exif\\x00\\x00II\\x2A\\x00", "Adobe",
                             "\\x01\\x12\\x00\\x03", "\\x12\\x01\\x03\\x00", "\\xFF\\xDC\\xFF\\xDC"})
        file << '"' << text << "\"\n";
}

void addBytesToDrawFrom(const Folder& folder) {
    std::mt19937 engine(7);
    for (int i = 0; i < 40; ++i) {
        Bytes bytes(100 + 20 * static_cast<size_t>(i));
        for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(engine());
        folder.add("random_" + std::to_string(i), bytes);
    }
}

}    // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("Usage: make_corpus FOLDER\n", stderr);
        return 2;
    }
    const fs::path root = argv[1];
    const Folder streams(root / "jpeg_read");
    addGoodStreams(streams);
    addHostileStreams(streams);
    addDictionary(root / "jpeg.dict");
    for (const char* target : {"core", "filters", "geometry", "jpeg_write", "pixel", "rank"})
        addBytesToDrawFrom(Folder(root / target));
    return 0;
}
