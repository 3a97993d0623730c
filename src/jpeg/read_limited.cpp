// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Reading of JPEG streams with limits, cancellation and a report.
#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "OPCV_dlib_read.h"
#include "jpeg/new_page.h"

namespace {

opcv_read_status statusOf(Outcome outcome) {
    switch (outcome) {
        case Outcome::kDone: return OPCV_READ_OK;
        case Outcome::kOverLimit: return OPCV_READ_OVER_LIMIT;
        case Outcome::kNoMemory: return OPCV_READ_NO_MEMORY;
        case Outcome::kCancelled: return OPCV_READ_CANCELLED;
        case Outcome::kWrongSize: return OPCV_READ_WRONG_SIZE;
        default: return OPCV_READ_UNREADABLE;
    }
}

template <class T>
T tighter(T own, T callers) {
    return callers == 0 ? own : std::min(own, callers);
}

// One call: its arguments and its results.
class LimitedReading {
public:
    LimitedReading(const void* jpeg, size_t bytes, const opcv_read_options* options, opcv_read_report* report)
        : stream_(static_cast<const unsigned char*>(jpeg)), bytes_(bytes), report_(report) {
        valid_ = jpeg && bytes > 0 && takeOptions(options) && (!report || report->struct_size >= sizeof *report);
    }

    bool isValid() const { return valid_; }

    // Passes the page's headers to `deliver`, which returns the result of decoding.
    template <class Deliver>
    opcv_read_status run(Deliver deliver) {
        PageInfo page;
        Outcome outcome = inspectStream(stream_, bytes_, limits_, page);
        if (outcome == Outcome::kDone) outcome = deliver(page);
        write(page, outcome);
        return statusOf(outcome);
    }

    // Passes the decoder to `read`.
    template <class Read>
    Outcome decode(Read read) {
        Decoder decoder(stream_, bytes_, cancellation_);
        const Outcome outcome = read(decoder);
        decoded_.rows_decoded = decoder.rowsDecoded();
        decoded_.end_marker_seen = decoder.endSeen() ? 1 : 0;
        decoded_.warnings = decoder.warnings();
        decoded_.damaged =
            outcome == Outcome::kUnreadable || (outcome == Outcome::kDone && decoder.isDamaged()) ? 1 : 0;
        return outcome;
    }

    // The bytes of the page count if the call allocates them.
    bool exceedsMemory(const PageInfo& page, int64_t pageBytes) {
        memory_ = page.decoderBytes + pageBytes;
        return memory_ > limits_.memory;
    }

private:
    bool takeOptions(const opcv_read_options* options) {
        if (!options) return true;
        if (options->struct_size < sizeof *options || options->max_pixels < 0 || options->max_memory < 0 ||
            options->max_scans < 0 || options->reserved != 0)
            return false;
        // A later version of the structure is longer. Fields unknown to this version must be unused.
        const auto* const first = reinterpret_cast<const unsigned char*>(options);
        if (std::any_of(first + sizeof *options, first + options->struct_size, [](int byte) { return byte != 0; }))
            return false;
        limits_.bytes = tighter(limits_.bytes, options->max_bytes);
        limits_.pixels = tighter(limits_.pixels, options->max_pixels);
        limits_.memory = tighter(limits_.memory, options->max_memory);
        limits_.scans = tighter(limits_.scans, int{options->max_scans});
        cancellation_ = {options->cancel, options->context};
        return true;
    }

    void write(const PageInfo& page, Outcome outcome) {
        if (!report_) return;
        opcv_read_report all = decoded_;
        all.struct_size = report_->struct_size;
        all.width = page.width;
        all.height = page.height;
        all.channels = page.channels;
        all.components = page.stored.components;
        all.progressive = page.stored.progressive ? 1 : 0;
        all.arithmetic = page.stored.arithmetic ? 1 : 0;
        all.scans = page.stored.scans;
        all.orientation = page.orientationTag;
        all.dpi_x = page.resolution.x;
        all.dpi_y = page.resolution.y;
        all.memory = memory_;
        all.rows = page.orientation.transposed ? page.width : page.height;
        if (outcome == Outcome::kUnreadable) all.damaged = 1;
        *report_ = all;
    }

    const unsigned char* stream_;
    size_t bytes_;
    opcv_read_report* report_;
    bool valid_;
    ReadLimits limits_;
    Cancellation cancellation_;
    int64_t memory_ = 0;
    opcv_read_report decoded_{};
};

// The bytes of the record, including its pixels. A record has at most 2^31 - 1 bytes of pixels.
Outcome checkRecord(LimitedReading& reading, const PageInfo& page) {
    const int64_t pixelBytes = page.pixels() * page.channels;
    const bool tooMuch = reading.exceedsMemory(page, pixelBytes + static_cast<int64_t>(sizeof(KVIMG)));
    return tooMuch || pixelBytes > INT32_MAX ? Outcome::kOverLimit : Outcome::kDone;
}

bool isUsable(const opcv_rows* rows) {
    return rows && rows->data && rows->width > 0 && rows->height > 0 && (rows->channels == 1 || rows->channels == 3) &&
           std::abs(rows->step) >= ptrdiff_t{rows->width} * rows->channels;
}

}    // namespace

opcv_read_status opcv_read_info(const void* jpeg, size_t bytes, const opcv_read_options* options,
                                opcv_read_report* report) {
    LimitedReading reading(jpeg, bytes, options, report);
    if (!reading.isValid() || !report) return OPCV_READ_BAD_ARGUMENT;
    return reading.run([&reading](const PageInfo& page) { return checkRecord(reading, page); });
}

opcv_read_status opcv_read_page(const void* jpeg, size_t bytes, const opcv_read_options* options, KVIMG** page,
                                opcv_read_report* report) {
    if (!page) return OPCV_READ_BAD_ARGUMENT;
    *page = nullptr;
    LimitedReading reading(jpeg, bytes, options, report);
    if (!reading.isValid()) return OPCV_READ_BAD_ARGUMENT;
    return reading.run([&reading, page](const PageInfo& info) {
        if (const Outcome record = checkRecord(reading, info); record != Outcome::kDone) return record;
        NewPage image(info);
        const Outcome outcome = reading.decode([&image, &info](Decoder& decoder) { return image.read(info, decoder); });
        if (outcome != Outcome::kDone) return outcome;
        *page = image.release();
        return *page ? Outcome::kDone : Outcome::kNoMemory;
    });
}

opcv_read_status opcv_read_rows(const void* jpeg, size_t bytes, const opcv_read_options* options, const opcv_rows* rows,
                                opcv_read_report* report) {
    LimitedReading reading(jpeg, bytes, options, report);
    if (!reading.isValid() || !isUsable(rows)) return OPCV_READ_BAD_ARGUMENT;
    return reading.run([&reading, rows](const PageInfo& info) {
        if (reading.exceedsMemory(info, 0)) return Outcome::kOverLimit;
        if (rows->width != info.width || rows->height != info.height || rows->channels < info.channels)
            return Outcome::kWrongSize;
        return reading.decode([rows, &info](Decoder& decoder) {
            const Outcome opened = decoder.open(info);
            return opened != Outcome::kDone ? opened : decoder.read({rows->data, rows->step, rows->channels});
        });
    });
}
