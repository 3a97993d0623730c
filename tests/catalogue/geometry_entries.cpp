// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Rotation, deskew, quarter turns and resize.
#include <algorithm>
#include <opencv2/core.hpp>

#include "catalogue/catalogue.h"

namespace {

const std::vector<int> kDepths = {8, 24, 32};
const std::vector<double> kAngles = {0, 1.5, -33, 90, 180, -120};

// Page variants: every depth at every angle.
constexpr int kPageVariants = 18;

int depthOf(const Case& c) { return pick(kDepths, c.variant); }
double angleOf(const Case& c) { return pick(kAngles, c.variant / 3); }

// Region variants: the four-byte and the signed 16-bit type as well.
const std::vector<int> kTypes = {CV_8UC1, CV_8UC3, CV_8UC4, CV_16SC1};
constexpr int kRegionVariants = 24;

struct Region {
    Image image;    // from the image's first pixel
    IppiSize size;
    IppiRect roi;
};

// A region in its image. The image above it, to its left and, up to the end of the rows, to its right is read.
Region regionIn(Case& c, int pixelSize) {
    const IppiRect roi = {c.random.between(0, 3), c.random.between(0, 2), c.size.width, c.size.height};
    const IppiSize size = {roi.x + roi.width + c.random.between(0, 3), roi.y + roi.height};
    return {c.source({size, pixelSize, {}, Layout::kPacked}), size, roi};
}

Image imageAround(const Image& region, const IppiRect& roi, int pixelSize) {
    return {region.data - ptrdiff_t{roi.y} * region.step - ptrdiff_t{roi.x} * pixelSize, region.step};
}

// A region around which nothing is read.
Region regionAlone(Case& c, int pixelSize) {
    const IppiRect roi = {c.random.between(0, 3), c.random.between(0, 2), c.size.width, c.size.height};
    const Margin left = {roi.x, 0, 0, 0};    // so that the rows are long enough for the rectangle
    const Image image = c.source({c.size, pixelSize, left});
    return {imageAround(image, roi, pixelSize), {roi.x + roi.width, roi.y + roi.height}, roi};
}

Region targetIn(Case& c, int pixelSize) {
    const IppiRect roi = {c.random.between(0, 3), c.random.between(0, 2),
                          std::max(1, c.size.width + c.random.between(-3, 3)),
                          std::max(1, c.size.height + c.random.between(-1, 3))};
    const Image image = c.target({{roi.width, roi.height}, pixelSize, {roi.x, roi.y, 0, 0}});
    return {imageAround(image, roi, pixelSize), {}, roi};
}

float shiftOf(Case& c, int side) { return static_cast<float>(c.random.real(-side, side) / 2); }

// `function(src, dst)`, which rejects a null image, an empty rectangle, and a rectangle that is outside its image or,
// for the target, outside its rows.
template <class Function>
void callOnImages(Case& c, const Region& src, const Region& dst, int refused, Function function) {
    c.call = [=] { return function(src, dst); };
    const auto refuse = [&](const char* what, auto change) {
        Region from = src;
        Region to = dst;
        change(from, to);
        c.refuse(what, refused, [=] { return function(from, to); });
    };
    refuse("a null source", [](Region& from, Region& /*to*/) { from.image.data = nullptr; });
    refuse("a null target", [](Region& /*from*/, Region& to) { to.image.data = nullptr; });
    for (const int side : {0, -1}) {
        refuse("a source without columns", [side](Region& from, Region& /*to*/) { from.roi.width = side; });
        refuse("a source without rows", [side](Region& from, Region& /*to*/) { from.roi.height = side; });
        refuse("a target without columns", [side](Region& /*from*/, Region& to) { to.roi.width = side; });
        refuse("a target without rows", [side](Region& /*from*/, Region& to) { to.roi.height = side; });
    }
    refuse("a region wider than the image", [](Region& from, Region& /*to*/) { from.size.width = from.roi.width - 1; });
    refuse("a region higher than the image",
           [](Region& from, Region& /*to*/) { from.size.height = from.roi.height - 1; });
    refuse("a short step of the source",
           [](Region& from, Region& /*to*/) { from.image.step = from.roi.x + from.roi.width - 1; });
    // The rotation about a point writes no more columns than the region has.
    refuse("a short step of the target",
           [](Region& from, Region& to) { to.image.step = std::min(from.roi.width, to.roi.width) - 1; });
}

void rotate(Case& c) {
    const int type = pick(kTypes, c.variant);
    const double angle = pick(kAngles, c.variant / 4);
    const int pixelSize = static_cast<int>(CV_ELEM_SIZE(type));
    const Region src = regionIn(c, pixelSize);
    const Region dst = targetIn(c, pixelSize);
    const float xShift = shiftOf(c, c.size.width);
    const float yShift = shiftOf(c, c.size.height);
    if (type == CV_16SC1) c.lostByOpenCV = 1;
    callOnImages(c, src, dst, ippStsBadArgErr, [=](const Region& from, const Region& to) {
        return ippiRotate(from.image.data, from.size, from.image.step, from.roi, to.image.data, to.image.step, to.roi,
                          angle, xShift, yShift, 0, type, cv::Scalar(1, 200, 3, 4));
    });
}

void rotateAbout(Case& c) {
    const int type = pick(kTypes, c.variant);
    const double angle = pick(kAngles, c.variant / 4);
    const int pixelSize = static_cast<int>(CV_ELEM_SIZE(type));
    const Region src = regionAlone(c, pixelSize);
    const Region dst = targetIn(c, pixelSize);
    const double x = c.random.real(-20, 120);
    const double y = c.random.real(-20, 120);
    if (type == CV_16SC1) c.lostByOpenCV = 1;
    callOnImages(c, src, dst, ippStsBadArgErr, [=](const Region& from, const Region& to) {
        return ippiRotateCenter(from.image.data, from.size, from.image.step, from.roi, to.image.data, to.image.step,
                                to.roi, angle, x, y, 0, type, cv::Scalar(1, 200, 3, 4));
    });
}

using MacRotation = OSErr (*)(const unsigned char*, IppiSize, int, IppiRect, unsigned char*, int, IppiRect, double,
                              double, double, int);

std::function<void(Case&)> rotateOnBlack(MacRotation turn, int pixelSize) {
    return [turn, pixelSize](Case& c) {
        const Region src = regionIn(c, pixelSize);
        const Region dst = targetIn(c, pixelSize);
        const double angle = pick(kAngles, c.variant);
        const double xShift = shiftOf(c, c.size.width);
        const double yShift = shiftOf(c, c.size.height);
        callOnImages(c, src, dst, paramErr, [=](const Region& from, const Region& to) {
            return turn(from.image.data, from.size, from.image.step, from.roi, to.image.data, to.image.step, to.roi,
                        angle, xShift, yShift, 0);
        });
    };
}

void rotateShift(Case& c) {
    auto* x = c.targetOf(0.0);
    auto* y = c.targetOf(0.0);
    const auto shift = [&c](double* right, double* down) {
        return [&c, right, down] {
            KVMac_ippiGetRotateShift(c.size.width / 2.0, c.size.height / 2.0, 33, right, down);
            return 0;
        };
    };
    c.call = shift(x, y);
    c.refuse("no place for the first", 0, shift(nullptr, y));
    c.refuse("no place for the second", 0, shift(x, nullptr));
}

// `function(record, description, slot)`: each of them may be null, and the depth unknown.
template <class Function>
void callOnPage(Case& c, const Page& page, Function function) {
    c.call = [=, &c] { return function(page.record, page.description, &c.record); };
    c.refuse("a null page", paramErr, [=, &c] { return function(nullptr, page.description, &c.record); });
    c.refuse("a null handle", paramErr, [=, &c] { return function(page.record, nullptr, &c.record); });
    c.refuse("a null slot", paramErr, [=] { return function(page.record, page.description, nullptr); });
    auto* none = c.sourceOf<KVImageDescription*>(nullptr);
    c.refuse("a null description", paramErr, [=, &c] { return function(page.record, none, &c.record); });
    for (const int depth : {1, 16}) {
        KVImageDescription* unknown = c.sourceOf(descriptionOf(c.size, depth));
        KVImageDescriptionHandle handle = c.sourceOf(unknown);
        c.refuse("an unknown depth", rotateFailedErr, [=, &c] { return function(page.record, handle, &c.record); });
    }
}

void deskew(Case& c) {
    const Page page = pageOf(c, depthOf(c), Rows::kPixelsOnly);
    const auto white = static_cast<unsigned char>(c.random.between(0, 1));
    const double angle = angleOf(c);
    callOnPage(c, page, [=](const KVIMG* record, KVImageDescriptionHandle description, KVIMG** slot) {
        return DeskewImageWithIPP(record, description, slot, 0, white, angle);
    });
}

KVRect cropOf(Case& c) {
    if (c.isPage()) return {0, 0, c.size.height, c.size.width};
    const int top = c.random.between(-3, 3);
    const int left = c.random.between(-3, 3);
    return {top, left, top + std::max(1, c.size.height + c.random.between(-2, 2)),
            left + std::max(1, c.size.width + c.random.between(-2, 2))};
}

void deskewCropped(Case& c) {
    const Page page = pageOf(c, depthOf(c), Rows::kWhole);
    auto* crop = c.targetEvenOnFailure(cropOf(c));
    const double angle = angleOf(c);
    callOnPage(c, page, [=](const KVIMG* record, KVImageDescriptionHandle description, KVIMG** slot) {
        return DeskewImageWithIPPEx(record, description, slot, 0, 1, crop, angle);
    });
    c.refuse("a null crop", paramErr,
             [=, &c] { return DeskewImageWithIPPEx(page.record, page.description, &c.record, 0, 1, nullptr, angle); });
}

void deskewAbout(Case& c) {
    const Page page = pageOf(c, depthOf(c), Rows::kWhole);
    auto* good = c.sourceOf(cropOf(c));
    const double angle = angleOf(c);
    const auto deskewTo = [&c, angle](KVRect* crop) {
        return [&c, angle, crop](const KVIMG* record, KVImageDescriptionHandle description, KVIMG** slot) {
            return DeskewImageWithIPPExWithShirftPoint(record, description, slot, 0, 1, crop, c.size.width / 3,
                                                       c.size.height / 3, angle);
        };
    };
    callOnPage(c, page, deskewTo(good));
    const auto refuse = [&](const char* what, int status, KVRect* crop) {
        c.refuse(what, status, [=, &c] { return deskewTo(crop)(page.record, page.description, &c.record); });
    };
    refuse("a null crop", paramErr, nullptr);
    refuse("an empty crop", rotateFailedErr, c.sourceOf(KVRect{1, 1, 1, 9}));
}

void quarterTurn(Case& c) {
    const Page page = pageOf(c, depthOf(c), Rows::kPixelsOnly);
    const double good = pick<double>({90, 180, 270, -90, -180, -270}, c.variant / 3);
    const auto turnBy = [](double angle) {
        return [angle](const KVIMG* record, KVImageDescriptionHandle description, KVIMG** slot) {
            return RotateImageWithIPP(record, description, slot, angle);
        };
    };
    callOnPage(c, page, turnBy(good));
    for (const double angle : {0.0, 89.9, 360.0, 45.0})
        c.refuse("an angle that is no quarter turn", badAngleErr,
                 [=, &c] { return turnBy(angle)(page.record, page.description, &c.record); });
}

int canvasStep(int depth, int width) {
    return depth == 24 ? (3 * width + 3) / 4 * 4 : (depth / 8 * width + 15) / 16 * 16;
}

void unite(Case& c) {
    const int depth = depthOf(c);
    const Page page = pageOf(c, depth, Rows::kWhole);
    const int width = c.size.width + c.random.between(0, 9);
    const int height = c.size.height + c.random.between(0, 9);
    auto* canvas = c.addressesIn(KVImageHeader{nullptr, 0, depth, width, height, canvasStep(depth, width)});
    const auto* image =
        c.sourceOf(KVImageHeader{page.record->data, 0, depth, c.size.width, c.size.height, page.record->rowBytes});
    const double angle = angleOf(c);
    const auto unite = [angle](KVImageHeader* to, const KVImageHeader* from, KVIMG** slot) {
        return [=] { return UniteImageIplRotateImage(to, from, slot, angle); };
    };
    c.call = unite(canvas, image, &c.record);
    c.refuse("a null canvas", uniteFailedErr, unite(nullptr, image, &c.record));
    c.refuse("a null image", uniteFailedErr, unite(canvas, nullptr, &c.record));
    c.refuse("a null slot", uniteFailedErr, unite(canvas, image, nullptr));
}

// Ratios that leave at least one pixel.
double ratioOf(Case& c, int side) {
    const double ratio = pick<double>({0.5, 0.71, 1.3, 1, 2.9}, c.variant / 3);
    return side * ratio < 1 ? 1.3 : ratio;
}
constexpr int kRatioVariants = 15;

void resizePage(Case& c) {
    const Page page = pageOf(c, depthOf(c), Rows::kPixelsOnly);
    const double ratio = ratioOf(c, std::min(c.size.width, c.size.height));
    const auto resize = [](const KVIMG* record, KVIMG** slot, double divisor, double dividend) {
        return [=] { return ResizeImageWithIPPEx(record, slot, divisor, dividend); };
    };
    c.call = resize(page.record, &c.record, 1.0, ratio);
    c.refuse("a null page", paramErr, resize(nullptr, &c.record, 1.0, ratio));
    c.refuse("a null slot", paramErr, resize(page.record, nullptr, 1.0, ratio));
    c.refuse("a scale without pixels", paramErr, resize(page.record, &c.record, 1e9, 1.0));
    c.refuse("a scale below 0", paramErr, resize(page.record, &c.record, -1.0, 1.0));
    c.refuse("a scale that is not a number", paramErr, resize(page.record, &c.record, 0, 0));
}

// A shift that leaves part of a scaled side in the destination.
int shiftWithin(Case& c, int scaled, int target) {
    return c.random.between(-std::min(2, scaled - 1), std::min(2, target - 1));
}

void resizeAndPlace(Case& c) {
    const double xFactor = ratioOf(c, c.size.width);
    const double yFactor = ratioOf(c, c.size.height);
    const IppiSize scaled = {cvRound(c.size.width * xFactor), cvRound(c.size.height * yFactor)};
    const Region src = regionAlone(c, 1);
    const IppiRect to = {c.random.between(0, 3), c.random.between(0, 3),
                         std::max(1, scaled.width + c.random.between(-2, 2)),
                         std::max(1, scaled.height + c.random.between(-2, 2))};
    const Region dst = {imageAround(c.target({{to.width, to.height}, 1, {to.x, to.y, 0, 0}}), to, 1), {}, to};
    const double xShift = shiftWithin(c, scaled.width, to.width);
    const double yShift = shiftWithin(c, scaled.height, to.height);
    const auto resize = [=](const Region& from, const Region& into, double right) {
        return OPCV_ippiResizeSqrPixel_8u_C1R(from.image.data, from.size, from.image.step, from.roi, into.image.data,
                                              into.image.step, into.roi, xFactor, yFactor, right, yShift, 0, nullptr);
    };
    c.call = [=] { return resize(src, dst, xShift); };
    const auto refuse = [&](const char* what, auto change) {
        Region from = src;
        Region into = dst;
        double right = xShift;
        change(from, into, right);
        c.refuse(what, ippStsBadArgErr, [=] { return resize(from, into, right); });
    };
    refuse("a null source", [](Region& from, Region&, double&) { from.image.data = nullptr; });
    refuse("a null target", [](Region&, Region& into, double&) { into.image.data = nullptr; });
    refuse("a region wider than the image",
           [](Region& from, Region&, double&) { from.size.width = from.roi.width - 1; });
    refuse("a short step of the source",
           [](Region& from, Region&, double&) { from.image.step = from.roi.x + from.roi.width - 1; });
    refuse("a shift out of the target", [](Region&, Region& into, double& right) { right = into.roi.width; });
    refuse("a shift that is no int", [](Region&, Region&, double& right) { right = 1e12; });
}

void resizeToFit(Case& c) {
    const Region src = regionAlone(c, 3);
    const IppiSize to = {std::max(1, static_cast<int>(c.size.width * ratioOf(c, c.size.width))),
                         std::max(1, static_cast<int>(c.size.height * ratioOf(c, c.size.height)))};
    const Region dst = {c.target({to, 3}), {}, {0, 0, to.width, to.height}};
    callOnImages(c, src, dst, ippStsBadArgErr, [](const Region& from, const Region& into) {
        return IPPMini_ippiResize_8u_C3R(from.image.data, from.size, from.image.step, from.roi, into.image.data,
                                         into.image.step, {into.roi.width, into.roi.height}, 1, 1, 0);
    });
}

}    // namespace

Entries geometryEntries() {
    const OutOfMemory framed = OutOfMemory::answersOrThrows(ippStsNoMemErr);
    const OutOfMemory records = OutOfMemory::answersOrThrows(memFullErr);
    const auto angles = static_cast<int>(kAngles.size());
    const std::vector<Shape> turned = {{"1.5 degrees", 1}};
    const std::vector<Shape> turnedColour = {{"C3, 1.5 degrees", 5}};
    const std::vector<Shape> turnedPages = {{"8 bits, 1.5 degrees", 3}, {"24 bits, 1.5 degrees", 4}};
    const std::vector<Shape> quarters = {{"8 bits, 90 degrees", 0}, {"24 bits, 90 degrees", 1}};
    const std::vector<Shape> scaledPages = {{"8 bits, by 0.71", 3}, {"24 bits, by 0.71", 4}};
    const std::vector<Shape> scaled = {{"by 0.71", 3}};
    const OutOfMemory united = OutOfMemory::answersOrThrows(uniteFailedErr);
    return {
        {"KVMac_ippiGetRotateShift", 1, OutOfMemory::never(), rotateShift, {{"", 0}}, kNoImageWork},
        {"KVMac_ippiRotate_8u_C1R", angles, records, rotateOnBlack(KVMac_ippiRotate_8u_C1R, 1), turned},
        {"KVMac_ippiRotate_8u_C3R", angles, records, rotateOnBlack(KVMac_ippiRotate_8u_C3R, 3), turned},
        {"ippiRotate", kRegionVariants, framed, rotate, turnedColour, "KVMac_ippiRotate_8u_C3R"},
        {"ippiRotateCenter", kRegionVariants, framed, rotateAbout, turnedColour},
        {"DeskewImageWithIPP", kPageVariants, records, deskew, turnedPages},
        {"DeskewImageWithIPPEx", kPageVariants, records, deskewCropped, turnedPages},
        {"DeskewImageWithIPPExWithShirftPoint", kPageVariants, records, deskewAbout, turnedPages},
        {"RotateImageWithIPP", kPageVariants, records, quarterTurn, quarters},
        {"UniteImageIplRotateImage", kPageVariants, united, unite, turnedPages},
        {"ResizeImageWithIPPEx", kRatioVariants, records, resizePage, scaledPages},
        {"OPCV_ippiResizeSqrPixel_8u_C1R", kRatioVariants, framed, resizeAndPlace, scaled},
        {"IPPMini_ippiResize_8u_C3R", kRatioVariants, OutOfMemory::throwsOnly(), resizeToFit, scaled},
    };
}
