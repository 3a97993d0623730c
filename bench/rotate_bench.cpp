// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <memory>
#include <string>

#include "OPCV_dlib.h"
#include "core/ownership.h"
#include "oracle/rotation.h"
#include "page_record.h"
#include "support.h"

namespace {

using bench::PageRecord;

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
        {channels == 1 ? "KVMac_ippiRotate_8u_C1R" : "KVMac_ippiRotate_8u_C3R", degrees(angle), size, channels},
        [&from, &to, size, all, angle, shift, call] {
            call(from.data(), size, from.step(), all, to.data(), to.step(), all, angle, shift.x, shift.y, 0);
        },
        bench::openCV([plain, shift] {
            oracle::rotateByOpenCV(plain, static_cast<float>(shift.x), static_cast<float>(shift.y));
        }),
        [&to, &expected] { return to.sameRegion(expected); });
}

// A new record, filled by the plain calls.
template <class Fill>
void intoNewRecord(IppiSize size, int depth, const Fill& fill) {
    opcv::RecordPtr record;
    opcv::createRecord({0, 0, size.height, size.width}, static_cast<unsigned char>(depth), record);
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
    bench::compare(
        {"DeskewImageWithIPP", std::to_string(depth) + " bit, " + degrees(angle), size, depth / 8},
        [page, angle] {
            KVIMG* turned = nullptr;
            DeskewImageWithIPP(&page->record, &page->pointer, &turned, 0, 0, angle);
            const opcv::RecordPtr owner(turned);
        },
        bench::openCV([page, size, depth, angle] {
            intoNewRecord(size, depth, [&](const KVIMG& record) {
                oracle::rotateAboutByOpenCV(plainInto(*page, record, angle), (size.width - 1) * 0.5,
                                            (size.height - 1) * 0.5);
            });
        }));
}

// A crop is compared twice: with the plain way to the crop, and with the whole page.
void compareHalfPage(IppiSize size, int depth, double angle) {
    const auto page = std::make_shared<PageRecord>(size, depth);
    const KVRect half = {size.height / 4, 0, size.height / 4 + size.height / 2, size.width};
    const IppiSize shown = {size.width, size.height / 2};
    const Shift shift = shiftAboutCentre(size, angle);
    const bench::Action ours = [page, half, angle] {
        KVIMG* turned = nullptr;
        KVRect crop = half;
        DeskewImageWithIPPEx(&page->record, &page->pointer, &turned, 0, 0, &crop, angle);
        const opcv::RecordPtr owner(turned);
    };
    const std::string variant = "half page, " + std::to_string(depth) + " bit, " + degrees(angle);
    bench::compare(
        {"DeskewImageWithIPPEx", variant, size, bench::bytesOf(shown, depth / 8), bench::bytesOf(shown, depth / 8)},
        ours, bench::openCV([page, shown, depth, shift, half, angle] {
            intoNewRecord(shown, depth, [&](const KVIMG& record) {
                oracle::rotateByOpenCV(plainInto(*page, record, angle), static_cast<float>(shift.x - half.left),
                                       static_cast<float>(shift.y - half.top));
            });
        }));
    bench::compare({"DeskewImageWithIPPEx", variant + " beside the whole", size, bench::bytesOf(shown, depth / 8),
                    bench::bytesOf(shown, depth / 8)},
                   ours, {"whole page", [page, angle] {
                              KVIMG* turned = nullptr;
                              DeskewImageWithIPP(&page->record, &page->pointer, &turned, 0, 0, angle);
                              const opcv::RecordPtr owner(turned);
                          }});
}

// About a point in the upper left quarter of the page.
void compareAboutPoint(IppiSize size, int depth, double angle) {
    const auto page = std::make_shared<PageRecord>(size, depth);
    const int x = size.width / 4;
    const int y = size.height / 4;
    bench::compare(
        {"DeskewImageWithIPPExWithShirftPoint", std::to_string(depth) + " bit, " + degrees(angle), size, depth / 8},
        [=] {
            KVIMG* turned = nullptr;
            KVRect crop = {0, 0, size.height, size.width};
            DeskewImageWithIPPExWithShirftPoint(&page->record, &page->pointer, &turned, 0, 0, &crop, x, y, angle);
            const opcv::RecordPtr owner(turned);
        },
        bench::openCV([=] {
            intoNewRecord(size, depth, [&](const KVIMG& record) {
                oracle::rotateAboutByOpenCV(plainInto(*page, record, angle), x, y);
            });
        }));
}

void compareRotationAboutCentre(IppiSize size, int channels, double angle) {
    const bench::Page& from = bench::source(size, channels);
    bench::Page& to = bench::target(size, channels);
    bench::Page& expected = bench::otherTarget(size, channels);
    const IppiRect all = {0, 0, size.width, size.height};
    const int type = CV_MAKETYPE(CV_8U, channels);
    const double x = (size.width - 1) * 0.5;
    const double y = (size.height - 1) * 0.5;
    const oracle::Rotation plain = {const_cast<uint8_t*>(from.data()),
                                    from.step(),
                                    all,
                                    expected.data(),
                                    expected.step(),
                                    all,
                                    angle,
                                    type,
                                    cv::Scalar::all(0)};
    bench::compare(
        {"ippiRotateCenter", "C" + std::to_string(channels) + ", " + degrees(angle), size, channels},
        [=, &from, &to] {
            ippiRotateCenter(from.data(), size, from.step(), all, to.data(), to.step(), all, angle, x, y, 0, type,
                             cv::Scalar::all(0));
        },
        bench::openCV([plain, x, y] { oracle::rotateAboutByOpenCV(plain, x, y); }),
        [&to, &expected] { return to.sameRegion(expected); });
}

// Onto a white canvas of the size of the image. The plain way also fills a new record.
void compareUnite(IppiSize size, int depth, double angle) {
    const auto page = std::make_shared<PageRecord>(size, depth);
    const int channels = depth / 8;
    const auto header = std::make_shared<KVImageHeader>();
    header->width = size.width;
    header->height = size.height;
    header->depth = depth;
    header->rowStep = page->record.rowBytes;
    header->pixels = page->record.data;
    bench::compare(
        {"UniteImageIplRotateImage", std::to_string(depth) + " bit, " + degrees(angle), size, channels},
        [=] {
            KVImageHeader canvas = *header;
            canvas.rowStep = (size.width * depth / 8 + 3) / 4 * 4;
            KVIMG* united = nullptr;
            UniteImageIplRotateImage(&canvas, header.get(), &united, angle);
            const opcv::RecordPtr owner(united);
        },
        bench::openCV([=] {
            intoNewRecord(size, depth, [&](const KVIMG& record) {
                oracle::Rotation plain = plainInto(*page, record, -angle);
                plain.border = cv::Scalar::all(255);
                const Shift shift = shiftAboutCentre(size, -angle);
                oracle::rotateByOpenCV(plain, static_cast<float>(shift.x), static_cast<float>(shift.y));
            });
        }));
}

void compareRotations() {
    for (const IppiSize size : bench::sizes())
        for (const int channels : {1, 3}) {
            for (const double angle : {0.5, 2.3, 7.0, 16.0, 33.0, 45.0}) compareRegion(size, channels, angle);
            compareRotationAboutCentre(size, channels, 2.3);
            compareDeskew(size, 8 * channels, 2.3);
            compareHalfPage(size, 8 * channels, 2.3);
            compareAboutPoint(size, 8 * channels, 2.3);
            compareUnite(size, 8 * channels, 2.3);
        }
}

const bench::Goals goals({
    {"KVMac_ippiRotate_8u_C1R", "0.5 deg", 0.2},
    {"KVMac_ippiRotate_8u_C1R", "2.3 deg", 0.2},
    {"KVMac_ippiRotate_8u_C1R", "7.0 deg", 0.3},
    {"KVMac_ippiRotate_8u_C1R", "16.0 deg", 0.35},
    {"KVMac_ippiRotate_8u_C1R", "33.0 deg", 0.3},
    {"KVMac_ippiRotate_8u_C1R", "45.0 deg", 0.3},
    {"KVMac_ippiRotate_8u_C3R", "0.5 deg", 0.3},
    {"KVMac_ippiRotate_8u_C3R", "2.3 deg", 0.3},
    {"KVMac_ippiRotate_8u_C3R", "7.0 deg", 0.3},
    {"KVMac_ippiRotate_8u_C3R", "16.0 deg", 0.3},
    {"KVMac_ippiRotate_8u_C3R", "33.0 deg", 0.3},
    {"KVMac_ippiRotate_8u_C3R", "45.0 deg", 0.3},
    {"DeskewImageWithIPP", "8 bit, 2.3 deg", 0.22},
    {"DeskewImageWithIPP", "24 bit, 2.3 deg", 0.27},
    {"DeskewImageWithIPPEx", "half page, 8 bit, 2.3 deg beside the whole", 0.5},
    {"DeskewImageWithIPPEx", "half page, 24 bit, 2.3 deg beside the whole", 0.5},
});

const bench::Registration registration("Rotation", compareRotations);

}    // namespace
