// The library's part of a page's round trip (read, deskew, compress) beside the same chain of plain OpenCV calls, and
// each of its stages by itself.
#include <cstdlib>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "OPCV_dlib.h"
#include "core/ownership.h"
#include "support.h"

namespace {

constexpr double kAngle = 2.3;
constexpr int kMode = 450;    // quality 70

using Stream = std::vector<unsigned char>;

// Made once; the comparisons share it.
const Stream& pageStream(int depth) {
    static Stream streams[2];
    Stream& stream = streams[depth == 24 ? 1 : 0];
    if (stream.empty()) {
        const bench::Page& page = bench::source(bench::kPage, depth / 8);
        const auto [width, height] = bench::kPage;
        if (depth == 24)
            CompressRGB2YCbCr411(page.data(), page.step(), width, height, stream, 80, 300, 300);
        else
            CompressGray2Gray444(page.data(), page.step(), width, height, stream, 80, 300, 300, false);
    }
    return stream;
}

RecordPtr readPage(const Stream& stream, KVImageDescription& description) {
    KVImageDescription* record = &description;
    KVImageDescriptionHandle handle = &record;
    KVIMG* page = nullptr;
    ReadJPEG(stream.data(), static_cast<unsigned>(stream.size()), &handle, &page);
    return RecordPtr(page);
}

RecordPtr deskewPage(const KVIMG& page, KVImageDescription& description) {
    KVImageDescription* record = &description;
    KVIMG* straight = nullptr;
    DeskewImageWithIPP(&page, &record, &straight, 0, 1, kAngle);
    return RecordPtr(straight);
}

void compressPage(const KVIMG& page, KVImageDescription& description) {
    KVImageDescription* record = &description;
    void* data = nullptr;
    unsigned size = 0;
    CompressJPEGEx(&page, &record, kMode, &data, &size);
    std::free(data);
}

cv::Mat decodePlain(const Stream& stream) {
    cv::Mat page = cv::imdecode(stream, cv::IMREAD_ANYCOLOR);
    return page;
}

cv::Mat deskewPlain(const cv::Mat& page) {
    const cv::Point2f centre(static_cast<float>(page.cols - 1) / 2, static_cast<float>(page.rows - 1) / 2);
    cv::Mat straight;
    cv::warpAffine(page, straight, cv::getRotationMatrix2D(centre, kAngle, 1), page.size(), cv::INTER_LINEAR,
                   cv::BORDER_CONSTANT, cv::Scalar::all(page.channels() == 3 ? 255 : 0));
    return straight;
}

void encodePlain(const cv::Mat& page) {
    Stream stream;
    cv::imencode(".jpg", page, stream, {cv::IMWRITE_JPEG_QUALITY, 70});
}

void comparePageChain() {
    for (const int depth : {8, 24}) {
        const std::string bits = std::to_string(depth) + " bits";
        bench::compare("read, deskew, compress " + bits,
                       [depth] {
                           KVImageDescription description{0, 0, 300, 300, 0, 0};
                           const RecordPtr page = readPage(pageStream(depth), description);
                           const RecordPtr straight = deskewPage(*page, description);
                           compressPage(*straight, description);
                       },
                       {{"OpenCV", [depth] { encodePlain(deskewPlain(decodePlain(pageStream(depth)))); }}});

        bench::compare("ReadJPEG " + bits,
                       [depth] {
                           KVImageDescription description{};
                           readPage(pageStream(depth), description);
                       },
                       {{"OpenCV", [depth] { decodePlain(pageStream(depth)); }}});

        static KVImageDescription descriptions[2] = {{0, 0, 300, 300, 0, 0}, {0, 0, 300, 300, 0, 0}};
        static RecordPtr pages[2];
        const size_t which = depth == 24 ? 1 : 0;
        pages[which] = readPage(pageStream(depth), descriptions[which]);
        const cv::Mat view(pages[which]->height, pages[which]->width, depth == 24 ? CV_8UC3 : CV_8UC1,
                           pages[which]->data);
        bench::compare("CompressJPEGEx " + bits, [which] { compressPage(*pages[which], descriptions[which]); },
                       {{"OpenCV", [view] { encodePlain(view); }}});
    }
}

const bench::Registration registration(comparePageChain);

}    // namespace
