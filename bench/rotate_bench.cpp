#include <memory>
#include <string>

#include "OPCV_dlib.h"
#include "core/ownership.h"
#include "oracle/rotation.h"
#include "support.h"

namespace {

size_t bytesMoved(IppiSize size, int channels) {
    return 2 * static_cast<size_t>(size.width) * static_cast<size_t>(size.height) * static_cast<size_t>(channels);
}

struct Shift {
    double x = 0;
    double y = 0;
};
Shift shiftAboutCentre(IppiSize size, double angle) {
    Shift shift;
    KVMac_ippiGetRotateShift((size.width - 1) * 0.5, (size.height - 1) * 0.5, angle, &shift.x, &shift.y);
    return shift;
}

std::string degrees(double angle) {
    std::string text = std::to_string(angle);
    return text.substr(0, text.find('.') + 2) + " deg";
}

void compareRegion(IppiSize size, int channels, double angle) {
    const bench::Page& from = bench::source(size, channels);
    bench::Page& to = bench::target(size, channels);
    bench::Page& expected = bench::otherTarget(size, channels);
    const Shift shift = shiftAboutCentre(size, angle);
    const IppiRect all = {0, 0, size.width, size.height};
    const auto call = channels == 1 ? KVMac_ippiRotate_8u_C1R : KVMac_ippiRotate_8u_C3R;
    const oracle::Rotation plain = {
        const_cast<uint8_t*>(from.data()), from.step(),       all, expected.data(), expected.step(), all, angle,
        CV_MAKETYPE(CV_8U, channels),      cv::Scalar::all(0)};
    bench::compare(
        bench::withSize("KVMac_ippiRotate C" + std::to_string(channels), size) + " " + degrees(angle),
        [&from, &to, size, all, angle, shift, call] {
            call(from.data(), size, from.step(), all, to.data(), to.step(), all, angle, shift.x, shift.y, 0);
        },
        {bench::memcpyOf(bytesMoved(size, channels)),
         {"OpenCV",
          [plain, shift] { oracle::rotateByOpenCV(plain, static_cast<float>(shift.x), static_cast<float>(shift.y)); }}},
        [&to, &expected] { return to.sameRegion(expected); });
}

// A page record over a shared page, and a description of it.
struct PageRecord {
    PageRecord(IppiSize size, int depth)
        : page(bench::source(size, depth / 8)),
          record{const_cast<uint8_t*>(page.data()), depth, size.width, size.height, page.step(), 0},
          description{size.width, size.height, 300, 300, 0, static_cast<int16_t>(depth)} {}

    const bench::Page& page;
    KVIMG record;
    KVImageDescription description;
    KVImageDescription* pointer = &description;
};

// A new record filled by the plain calls.
template <class Fill>
void intoNewRecord(IppiSize size, int depth, const Fill& fill) {
    RecordPtr record;
    createRecord({0, 0, size.height, size.width}, static_cast<unsigned char>(depth), record);
    fill(*record);
}

oracle::Rotation plainInto(const PageRecord& page, const KVIMG& record, double angle) {
    const IppiSize size = page.page.size();
    return {page.record.data,
            page.record.rowBytes,
            {0, 0, size.width, size.height},
            record.data,
            record.rowBytes,
            {0, 0, record.width, record.height},
            angle,
            CV_MAKETYPE(CV_8U, page.record.depth / 8),
            cv::Scalar::all(0)};
}

void compareDeskew(IppiSize size, int depth, double angle) {
    const auto page = std::make_shared<PageRecord>(size, depth);
    bench::compare(bench::withSize("DeskewImageWithIPP " + std::to_string(depth) + " bit", size) + " " + degrees(angle),
                   [page, angle] {
                       KVIMG* turned = nullptr;
                       DeskewImageWithIPP(&page->record, &page->pointer, &turned, 0, 0, angle);
                       DisposeKVIMG(turned);
                   },
                   {bench::memcpyOf(bytesMoved(size, depth / 8)),
                    {"OpenCV", [page, size, depth, angle] {
                         intoNewRecord(size, depth, [&](const KVIMG& record) {
                             oracle::rotateAboutByOpenCV(plainInto(*page, record, angle), (size.width - 1) * 0.5,
                                                         (size.height - 1) * 0.5);
                         });
                     }}});
}

void compareHalfPage(IppiSize size, int depth, double angle) {
    const auto page = std::make_shared<PageRecord>(size, depth);
    const KVRect half = {size.height / 4, 0, size.height / 4 + size.height / 2, size.width};
    const IppiSize shown = {size.width, size.height / 2};
    const Shift shift = shiftAboutCentre(size, angle);
    bench::compare(
        bench::withSize("DeskewImageWithIPPEx half " + std::to_string(depth) + " bit", size) + " " + degrees(angle),
        [page, half, angle] {
            KVIMG* turned = nullptr;
            KVRect crop = half;
            DeskewImageWithIPPEx(&page->record, &page->pointer, &turned, 0, 0, &crop, angle);
            DisposeKVIMG(turned);
        },
        {{"whole page",
          [page, angle] {
              KVIMG* turned = nullptr;
              DeskewImageWithIPP(&page->record, &page->pointer, &turned, 0, 0, angle);
              DisposeKVIMG(turned);
          }},
         {"OpenCV", [page, shown, depth, shift, half, angle] {
              intoNewRecord(shown, depth, [&](const KVIMG& record) {
                  oracle::rotateByOpenCV(plainInto(*page, record, angle), static_cast<float>(shift.x - half.left),
                                         static_cast<float>(shift.y - half.top));
              });
          }}});
}

void compareRotations() {
    for (const IppiSize size : {bench::kPage, bench::kTile}) {
        for (const int channels : {1, 3})
            for (const double angle : {0.5, 2.3, 7.0, 33.0}) compareRegion(size, channels, angle);
        for (const int depth : {8, 24}) compareDeskew(size, depth, 2.3);
    }
    for (const int depth : {8, 24}) compareHalfPage(bench::kPage, depth, 2.3);
}

const bench::Registration registration(compareRotations);

}    // namespace
