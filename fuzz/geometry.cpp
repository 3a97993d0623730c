// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Rotation, deskew, quarter turns, the united canvas and resize.
#include <algorithm>
#include <array>
#include <cmath>

#include "core/ownership.h"
#include "oracle/quarter_turn.h"
#include "oracle/rotation.h"
#include "support.h"

namespace {

using fuzz::Draw;
using fuzz::Image;
using fuzz::require;

double anyAngle(Draw& draw) {
    switch (draw.between(0, 3)) {
        case 0: return 90.0 * draw.between(-8, 8);
        case 1: return draw.anyReal();
        default: return draw.real(-400, 400);
    }
}

double anyShift(Draw& draw, bool& tame) {
    if (!draw.chance(16)) return draw.real(-90, 90);
    tame = false;
    return draw.anyReal();
}

// A rectangle of an image; the image's rows end with the rectangle's bottom.
IppiRect rectIn(Draw& draw, IppiSize size) {
    const int x = draw.between(0, size.width - 1);
    const int y = draw.between(0, size.height - 1);
    return {x, y, draw.between(1, size.width - x), size.height - y};
}

int typeOf(int pixelSize) { return CV_8UC(pixelSize); }

bool sameRect(Image& a, Image& b) { return a.bytes() == b.bytes(); }

bool insideOf(const Image& image, const IppiRect& written, const std::vector<uint8_t>& before) {
    std::vector<uint8_t> now = image.bytes();
    for (int y = 0; y < written.height; ++y) {
        const ptrdiff_t at = ptrdiff_t{written.y + y} * image.step() + ptrdiff_t{written.x} * image.pixelSize();
        std::copy_n(before.begin() + at, written.width * image.pixelSize(), now.begin() + at);
    }
    return now == before;
}

// Two images, a rectangle in each, and the angle between them.
struct Turn {
    explicit Turn(Draw& draw)
        : pixelSize(std::array{1, 3, 4}[static_cast<size_t>(draw.between(0, 2))]),
          source(draw, fuzz::anySize(draw), pixelSize, {}, Image::LastRow::kWhole),    // padding counts as image here
          target(draw, fuzz::anySize(draw), pixelSize),
          plain(target),
          from(rectIn(draw, source.size())),
          to(rectIn(draw, target.size())),
          angle(anyAngle(draw)),
          tame(std::abs(angle) < 1e6) {}

    int pixelSize;
    Image source;
    Image target;
    Image plain;    // a target for the plain calls
    IppiRect from;
    IppiRect to;
    double angle;
    bool tame;    // no number is so large that OpenCV may throw
};

// Compares `rotate()` into the target with `rotatePlainly(rotation)`.
template <class Rotate, class RotatePlainly>
void requireTurned(Turn& turn, const cv::Scalar& border, const char* what, Rotate rotate, RotatePlainly rotatePlainly) {
    IppStatus status = 0;
    const bool finished = fuzz::survives([&] { status = rotate(); });
    require(insideOf(turn.target, turn.to, turn.plain.bytes()), "nothing around the rectangle is written");
    if (!turn.tame) return;
    require(finished && status == 0, "a good call is done");
    rotatePlainly(oracle::Rotation{turn.source.region(), turn.source.step(), turn.from, turn.plain.region(),
                                   turn.plain.step(), turn.to, turn.angle, typeOf(turn.pixelSize), border});
    require(sameRect(turn.target, turn.plain), what);
}

void rotateRegion(Draw& draw) {
    Turn turn(draw);
    const auto xShift = static_cast<float>(anyShift(draw, turn.tame));
    const auto yShift = static_cast<float>(anyShift(draw, turn.tame));
    const cv::Scalar border(draw.between(-5, 300), draw.between(-5, 300), draw.byte(), draw.byte());
    requireTurned(
        turn, border, "rotation",
        [&] {
            return ippiRotate(turn.source.region(), turn.source.size(), turn.source.step(), turn.from,
                              turn.target.region(), turn.target.step(), turn.to, turn.angle, xShift, yShift, 0,
                              typeOf(turn.pixelSize), border);
        },
        [&](const oracle::Rotation& rotation) { oracle::rotateByOpenCV(rotation, xShift, yShift); });
}

void rotateOnBlack(Draw& draw) {
    Turn turn(draw);
    if (turn.pixelSize == 4) return;
    const double xShift = anyShift(draw, turn.tame);
    const double yShift = anyShift(draw, turn.tame);
    const auto rotate = turn.pixelSize == 1 ? KVMac_ippiRotate_8u_C1R : KVMac_ippiRotate_8u_C3R;
    requireTurned(
        turn, cv::Scalar::all(0), "rotation on black",
        [&] {
            return rotate(turn.source.region(), turn.source.size(), turn.source.step(), turn.from, turn.target.region(),
                          turn.target.step(), turn.to, turn.angle, xShift, yShift, 0);
        },
        [&](const oracle::Rotation& rotation) {
            oracle::rotateByOpenCV(rotation, static_cast<float>(xShift), static_cast<float>(yShift));
        });
}

void rotateAbout(Draw& draw) {
    Turn turn(draw);
    const double xCentre = anyShift(draw, turn.tame);
    const double yCentre = anyShift(draw, turn.tame);
    const cv::Scalar border(draw.byte(), draw.byte(), draw.byte(), draw.byte());
    requireTurned(
        turn, border, "rotation about a point",
        [&] {
            return ippiRotateCenter(turn.source.region(), turn.source.size(), turn.source.step(), turn.from,
                                    turn.target.region(), turn.target.step(), turn.to, turn.angle, xCentre, yCentre, 0,
                                    typeOf(turn.pixelSize), border);
        },
        [&](const oracle::Rotation& rotation) { oracle::rotateAboutByOpenCV(rotation, xCentre, yCentre); });
}

// Random sizes, steps and rectangles, for which the images are too small.
void refusedRotation(Draw& draw) {
    uint8_t pixel = 7;
    uint8_t written = 9;
    const IppiRect from = {draw.between(0, 9), draw.between(0, 9), draw.anyInt(), draw.anyInt()};
    const IppiSize size = {std::max(from.width, 1) - 1, draw.anyInt()};    // smaller than the rectangle
    const IppiRect to = {draw.anyInt(), draw.anyInt(), draw.anyInt(), draw.anyInt()};
    if (from.width > 0) {
        require(ippiRotate(&pixel, size, draw.anyInt(), from, &written, draw.anyInt(), to, draw.anyReal(), 0, 0, 0, 0,
                           cv::Scalar()) != 0,
                "a rectangle larger than the image is refused");
        require(
            IPPMini_ippiResize_8u_C3R(&pixel, size, draw.anyInt(), from, &written, draw.anyInt(), {1, 1}, 1, 1, 0) != 0,
            "a rectangle larger than the image is refused");
    }
    double x = 0;
    KVMac_ippiGetRotateShift(draw.anyReal(), draw.anyReal(), draw.anyReal(), &x, &x);
    KVMac_ippiGetRotateShift(draw.anyReal(), draw.anyReal(), draw.anyReal(), nullptr, &x);
    require(written == 9, "nothing is written");
}

// A page in a record over a block of exactly its size.
struct Page {
    explicit Page(Draw& draw) : image(draw, fuzz::anySize(draw), anyPixelSize(draw), {}, Image::LastRow::kWhole) {
        record = {image.region(), 8 * image.pixelSize(), image.width(),
                  image.height(), image.step(),          static_cast<int32_t>(image.bytes().size())};
        description.width = image.width();
        description.height = image.height();
        description.depth = static_cast<int16_t>(8 * image.pixelSize());
    }
    static int anyPixelSize(Draw& draw) { return std::array{1, 3, 4}[static_cast<size_t>(draw.between(0, 2))]; }

    Image image;
    KVIMG record{};
    KVImageDescription description{};
    KVImageDescription* handle = &description;
};

// A record, or null and a status. All its bytes must be writable.
void requireRecord(OSErr status, KVIMG* made, int depth) {
    const opcv::RecordPtr owner(made);
    require((status == noErr) == (made != nullptr), "a record is made exactly on success");
    if (!made) return;
    require(made->depth == depth && made->size == made->rowBytes * made->height, "the record describes its block");
    made->data[0] ^= 1;
    made->data[made->size - 1] ^= 1;
}

KVRect anyCrop(Draw& draw) {
    if (draw.chance(6)) return {draw.anyInt(), draw.anyInt(), draw.anyInt(), draw.anyInt()};
    const int left = draw.between(-60, 60);
    const int top = draw.between(-60, 60);
    return {top, left, top + draw.between(-2, 60), left + draw.between(-2, 90)};
}

void deskew(Draw& draw) {
    Page page(draw);
    const double angle = anyAngle(draw);
    const bool white = draw.chance(2);
    KVRect crop = anyCrop(draw);
    KVIMG* made = nullptr;
    OSErr status = noErr;
    const int which = draw.between(0, 2);
    const auto point = [&draw] {
        return draw.chance(8) ? static_cast<int64_t>(static_cast<uint64_t>(draw.anyInt()) << 32)
                              : draw.between(-90, 90);
    };
    const int64_t x = point();
    const int64_t y = point();
    fuzz::survives([&] {
        switch (which) {
            case 0: status = DeskewImageWithIPP(&page.record, &page.handle, &made, 0, white, angle); break;
            case 1: status = DeskewImageWithIPPEx(&page.record, &page.handle, &made, 0, white, &crop, angle); break;
            default:
                status = DeskewImageWithIPPExWithShirftPoint(&page.record, &page.handle, &made, 0, white, &crop, x, y,
                                                             angle);
        }
        requireRecord(status, made, page.record.depth);
        made = nullptr;
    });
    require(made == nullptr, "an exception leaves no record");
    page.image.requireUntouched();
}

void quarterTurn(Draw& draw) {
    Page page(draw);
    const double angle = anyAngle(draw);
    KVIMG* made = nullptr;
    const OSErr status = RotateImageWithIPP(&page.record, &page.handle, &made, angle);
    const bool whole = std::abs(angle) < 360 && static_cast<int>(angle) % 90 == 0 && static_cast<int>(angle) != 0;
    require((status == noErr) == whole, "quarter turns are done");
    if (made) {
        const int degrees = (static_cast<int>(angle) + 360) % 360;
        const int ps = page.image.pixelSize();
        for (int y = 0; y < made->height; ++y)
            for (int x = 0; x < made->width; ++x) {
                const IppiPoint at = oracle::beforeQuarterTurn(x, y, degrees, page.image.size());
                const uint8_t* turned = made->data + ptrdiff_t{y} * made->rowBytes + ptrdiff_t{x} * ps;
                const uint8_t* pixel = page.record.data + ptrdiff_t{at.y} * page.record.rowBytes + ptrdiff_t{at.x} * ps;
                require(std::equal(turned, turned + ps, pixel), "quarter turn");
            }
    }
    requireRecord(status, made, page.record.depth);
}

void brokenPages(Draw& draw) {
    Page page(draw);
    KVIMG* made = nullptr;
    KVRect crop = anyCrop(draw);
    page.description.depth = static_cast<int16_t>(draw.between(-4, 60));
    const int depth = page.description.depth;
    if (depth == 8 || depth == 24 || depth == 32) {
        page.description.depth = 16;
        page.record.depth = 16;
    }
    require(DeskewImageWithIPP(&page.record, &page.handle, &made, 0, 0, 1) == rotateFailedErr, "unknown depth");
    require(DeskewImageWithIPPEx(&page.record, &page.handle, &made, 0, 0, &crop, 1) == rotateFailedErr,
            "unknown depth");
    require(RotateImageWithIPP(&page.record, &page.handle, &made, 90) == rotateFailedErr, "unknown depth");
    KVImageDescription* nothing = nullptr;
    require(DeskewImageWithIPP(nullptr, &page.handle, &made, 0, 0, 1) == paramErr, "no source");
    require(DeskewImageWithIPP(&page.record, &nothing, &made, 0, 0, 1) == paramErr, "no description");
    require(RotateImageWithIPP(&page.record, nullptr, &made, 90) == paramErr, "no handle");
    require(ResizeImageWithIPPEx(nullptr, &made, 1, 1) == paramErr, "no source");
    require(made == nullptr, "no record");
}

void unite(Draw& draw) {
    Page page(draw);
    KVImageHeader from = {page.record.data,    0, page.record.depth, page.record.width, page.record.height,
                          page.record.rowBytes};
    const bool wild = draw.chance(4);
    const int width = wild ? draw.anyInt() : draw.between(1, 90);
    const int height = wild ? draw.anyInt() : draw.between(1, 40);
    const int64_t ps = page.image.pixelSize();
    const int64_t row = ps == 3 ? (3 * int64_t{width} + 3) / 4 * 4 : (ps * width + 15) / 16 * 16;
    KVImageHeader canvas = {nullptr, 0, page.record.depth, width, height, static_cast<int>(wild ? draw.anyInt() : row)};
    KVIMG* made = nullptr;
    OSErr status = noErr;
    const double angle = anyAngle(draw);
    const bool finished = fuzz::survives([&] { status = UniteImageIplRotateImage(&canvas, &from, &made, angle); });
    require(finished || !made, "an exception leaves no record");
    if (finished) requireRecord(status, made, page.record.depth);
    page.image.requireUntouched();
}

void resizePage(Draw& draw) {
    Page page(draw);
    const bool wild = draw.chance(4);
    const double denominator = wild ? draw.anyReal() : draw.real(1, 600);
    const double numerator = wild ? draw.anyReal() : draw.real(1, 600);
    KVIMG* made = nullptr;
    OSErr status = noErr;
    fuzz::survives([&] {
        status = ResizeImageWithIPPEx(&page.record, &made, denominator, numerator);
        requireRecord(status, made, page.record.depth);
        made = nullptr;
    });
    require(made == nullptr, "an exception leaves no record");
    page.image.requireUntouched();
}

double anyFactor(Draw& draw) { return draw.chance(16) ? draw.anyReal() : draw.real(0.01, 8); }

void resizeRegion(Draw& draw) {
    Image source(draw, fuzz::anySize(draw), 1);
    Image target(draw, fuzz::anySize(draw), 1);
    const std::vector<uint8_t> before = target.bytes();
    const IppiRect from = rectIn(draw, source.size());
    const IppiRect to = rectIn(draw, target.size());
    bool tame = true;
    const double xShift = anyShift(draw, tame);
    const double yShift = anyShift(draw, tame);
    const double xFactor = anyFactor(draw);
    const double yFactor = anyFactor(draw);
    // A factor that needs more than a few megabytes only takes time.
    constexpr double kMost = 2000;
    if (xFactor * from.width > kMost || yFactor * from.height > kMost) return;
    fuzz::survives([&] {
        OPCV_ippiResizeSqrPixel_8u_C1R(source.region(), source.size(), source.step(), from, target.region(),
                                       target.step(), to, xFactor, yFactor, xShift, yShift, 0, nullptr);
    });
    require(insideOf(target, to, before), "nothing around the rectangle is written");
    source.requireUntouched();
}

void resizeToFit(Draw& draw) {
    Image source(draw, fuzz::anySize(draw), 3);
    Image target(draw, fuzz::anySize(draw), 3);
    const IppiRect from = rectIn(draw, source.size());
    require(IPPMini_ippiResize_8u_C3R(source.region(), source.size(), source.step(), from, target.region(),
                                      target.step(), target.size(), 0, 0, 0) == 0,
            "a good call is done");
    target.requireUntouchedAroundRegion();
    const cv::Mat view = cv::Mat(source.height(), source.step() / 3, CV_8UC3,
                                 source.region())(cv::Rect(from.x, from.y, from.width, from.height));
    cv::Mat expected;
    cv::resize(view, expected, cv::Size(target.width(), target.height()), 0, 0, cv::INTER_LINEAR);
    for (int y = 0; y < target.height(); ++y)
        require(std::equal(expected.ptr(y), expected.ptr(y) + 3 * target.width(),
                           target.region() + ptrdiff_t{y} * target.step()),
                "resize");
}

}    // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Draw draw(data, size);
    constexpr std::array kOperations = {rotateRegion, rotateOnBlack, rotateAbout, refusedRotation,
                                        deskew,       quarterTurn,   brokenPages, unite,
                                        resizePage,   resizeRegion,  resizeToFit};
    fuzz::runOneOf(kOperations, draw);
    return 0;
}
