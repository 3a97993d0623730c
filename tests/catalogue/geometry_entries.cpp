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

// A region in its image. Above it, to its left and to its right, as far as the rows reach, the image counts.
Region regionIn(Case& c, int pixelSize) {
    const IppiRect roi = {c.random.between(0, 3), c.random.between(0, 2), c.size.width, c.size.height};
    const IppiSize size = {roi.x + roi.width + c.random.between(0, 3), roi.y + roi.height};
    return {c.source({size, pixelSize, {}, Layout::kPacked}), size, roi};
}

Image imageAround(const Image& region, const IppiRect& roi, int pixelSize) {
    return {region.data - ptrdiff_t{roi.y} * region.step - ptrdiff_t{roi.x} * pixelSize, region.step};
}

// A region of which nothing around is read.
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

void rotate(Case& c) {
    const int type = pick(kTypes, c.variant);
    const double angle = pick(kAngles, c.variant / 4);
    const int pixelSize = static_cast<int>(CV_ELEM_SIZE(type));
    const Region src = regionIn(c, pixelSize);
    const Region dst = targetIn(c, pixelSize);
    const float xShift = shiftOf(c, c.size.width);
    const float yShift = shiftOf(c, c.size.height);
    if (type == CV_16SC1) c.lostByOpenCV = 1;
    c.call = [=] {
        return ippiRotate(src.image.data, src.size, src.image.step, src.roi, dst.image.data, dst.image.step, dst.roi,
                          angle, xShift, yShift, 0, type, cv::Scalar(1, 200, 3, 4));
    };
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
    c.call = [=] {
        return ippiRotateCenter(src.image.data, src.size, src.image.step, src.roi, dst.image.data, dst.image.step,
                                dst.roi, angle, x, y, 0, type, cv::Scalar(1, 200, 3, 4));
    };
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
        c.call = [=] {
            return turn(src.image.data, src.size, src.image.step, src.roi, dst.image.data, dst.image.step, dst.roi,
                        angle, xShift, yShift, 0);
        };
    };
}

void rotateShift(Case& c) {
    auto* x = c.targetOf(0.0);
    auto* y = c.targetOf(0.0);
    c.call = [&c, x, y] {
        KVMac_ippiGetRotateShift(c.size.width / 2.0, c.size.height / 2.0, 33, x, y);
        return 0;
    };
}

void deskew(Case& c) {
    const Page page = pageOf(c, depthOf(c), Rows::kPixelsOnly);
    const auto white = static_cast<unsigned char>(c.random.between(0, 1));
    c.call = [&c, page, white] {
        return DeskewImageWithIPP(page.record, page.description, &c.record, 0, white, angleOf(c));
    };
}

KVRect cropOf(Case& c) {
    const int top = c.random.between(-3, 3);
    const int left = c.random.between(-3, 3);
    return {top, left, top + std::max(1, c.size.height + c.random.between(-2, 2)),
            left + std::max(1, c.size.width + c.random.between(-2, 2))};
}

void deskewCropped(Case& c) {
    const Page page = pageOf(c, depthOf(c), Rows::kWhole);
    auto* crop = c.targetEvenOnFailure(cropOf(c));
    c.call = [&c, page, crop] {
        return DeskewImageWithIPPEx(page.record, page.description, &c.record, 0, 1, crop, angleOf(c));
    };
}

void deskewAbout(Case& c) {
    const Page page = pageOf(c, depthOf(c), Rows::kWhole);
    auto* crop = c.sourceOf(cropOf(c));
    c.call = [&c, page, crop] {
        return DeskewImageWithIPPExWithShirftPoint(page.record, page.description, &c.record, 0, 1, crop,
                                                   c.size.width / 3, c.size.height / 3, angleOf(c));
    };
}

void quarterTurn(Case& c) {
    const Page page = pageOf(c, depthOf(c), Rows::kPixelsOnly);
    const double angle = pick<double>({90, 180, 270, -90, -180, -270}, c.variant / 3);
    c.call = [&c, page, angle] { return RotateImageWithIPP(page.record, page.description, &c.record, angle); };
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
    c.call = [&c, canvas, image] { return UniteImageIplRotateImage(canvas, image, &c.record, angleOf(c)); };
}

// Ratios that leave at least a pixel.
double ratioOf(Case& c, int side) {
    const double ratio = pick<double>({0.5, 0.71, 1.3, 1, 2.9}, c.variant / 3);
    return side * ratio < 1 ? 1.3 : ratio;
}
constexpr int kRatioVariants = 15;

void resizePage(Case& c) {
    const Page page = pageOf(c, depthOf(c), Rows::kPixelsOnly);
    const double ratio = ratioOf(c, std::min(c.size.width, c.size.height));
    c.call = [&c, page, ratio] { return ResizeImageWithIPPEx(page.record, &c.record, 1.0, ratio); };
}

// A shift that leaves something of a scaled side in the destination's.
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
    const Image dst = imageAround(c.target({{to.width, to.height}, 1, {to.x, to.y, 0, 0}}), to, 1);
    const double xShift = shiftWithin(c, scaled.width, to.width);
    const double yShift = shiftWithin(c, scaled.height, to.height);
    c.call = [=] {
        return OPCV_ippiResizeSqrPixel_8u_C1R(src.image.data, src.size, src.image.step, src.roi, dst.data, dst.step, to,
                                              xFactor, yFactor, xShift, yShift, 0, nullptr);
    };
}

void resizeToFit(Case& c) {
    const Region src = regionAlone(c, 3);
    const IppiSize to = {std::max(1, static_cast<int>(c.size.width * ratioOf(c, c.size.width))),
                         std::max(1, static_cast<int>(c.size.height * ratioOf(c, c.size.height)))};
    const Image dst = c.target({to, 3});
    c.call = [=] {
        return IPPMini_ippiResize_8u_C3R(src.image.data, src.size, src.image.step, src.roi, dst.data, dst.step, to, 1,
                                         1, 0);
    };
}

}    // namespace

Entries geometryEntries() {
    const OutOfMemory framed = OutOfMemory::answersOrThrows(ippStsNoMemErr);
    const OutOfMemory records = OutOfMemory::answersOrThrows(memFullErr);
    const auto angles = static_cast<int>(kAngles.size());
    return {
        {"KVMac_ippiGetRotateShift", 1, OutOfMemory::never(), rotateShift},
        {"KVMac_ippiRotate_8u_C1R", angles, records, rotateOnBlack(KVMac_ippiRotate_8u_C1R, 1)},
        {"KVMac_ippiRotate_8u_C3R", angles, records, rotateOnBlack(KVMac_ippiRotate_8u_C3R, 3)},
        {"ippiRotate", kRegionVariants, framed, rotate},
        {"ippiRotateCenter", kRegionVariants, framed, rotateAbout},
        {"DeskewImageWithIPP", kPageVariants, records, deskew},
        {"DeskewImageWithIPPEx", kPageVariants, records, deskewCropped},
        {"DeskewImageWithIPPExWithShirftPoint", kPageVariants, records, deskewAbout},
        {"RotateImageWithIPP", kPageVariants, records, quarterTurn},
        {"UniteImageIplRotateImage", kPageVariants, OutOfMemory::answersOrThrows(uniteFailedErr), unite},
        {"ResizeImageWithIPPEx", kRatioVariants, records, resizePage},
        {"OPCV_ippiResizeSqrPixel_8u_C1R", kRatioVariants, framed, resizeAndPlace},
        {"IPPMini_ippiResize_8u_C3R", kRatioVariants, framed, resizeToFit},
    };
}
