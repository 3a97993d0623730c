// pagegen: draws A4 pages as a scanner would see them: text, a picture, uneven light, noise, and a skew.
#include <OPCV_dlib.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <opencv2/imgproc.hpp>
#include <random>

namespace {

constexpr int kWidth = 2480;
constexpr int kHeight = 3508;
constexpr int kDpi = 300;
constexpr int kMargin = 260;

const char* const kText[] = {
    "A page that leaves the feeder is never quite straight. One roller",
    "grips a little earlier than the other, the sheet turns by a degree",
    "or two, and every line of text runs downhill. Nobody minds at first.",
    "Then the reader of the archive searches for a word, and the word is",
    "not found, because the letters stood on a slope when they were read.",
    "Straightening is cheap: find the angle at which the rows of ink and",
    "the rows of paper between them are most distinct, and turn the page",
    "back by that angle. What comes in from outside the sheet is painted",
    "white, so that no black wedge remains at the corners of the picture.",
    "The light of a scanner falls off towards the edges, and its sensor",
    "adds a little noise to every dot. Both stay in this picture, so that",
    "what is shown here is what a real page would show.",
};

void drawText(cv::Mat& page, int top, int lines, int first) {
    constexpr int kLeading = 74;
    constexpr int kLines = sizeof(kText) / sizeof(kText[0]);
    for (int i = 0; i < lines; ++i)
        cv::putText(page, kText[(first + i) % kLines], {kMargin, top + i * kLeading}, cv::FONT_HERSHEY_COMPLEX, 1.62,
                    cv::Scalar(38, 34, 36), 3, cv::LINE_AA);
}

// Hills under a low sun.
void drawPicture(cv::Mat picture) {
    for (int y = 0; y < picture.rows; ++y)
        picture.row(y).setTo(
            cv::Scalar(250 - 70.0 * y / picture.rows, 200 - 60.0 * y / picture.rows, 150 + 60.0 * y / picture.rows));
    cv::circle(picture, {picture.cols * 2 / 3, picture.rows / 2}, picture.rows / 6, cv::Scalar(255, 235, 170),
               cv::FILLED, cv::LINE_AA);
    for (int hill = 0; hill < 4; ++hill) {
        const cv::Scalar colour(120 - 24 * hill, 150 - 26 * hill, 110 - 22 * hill);
        for (int x = 0; x < picture.cols; ++x) {
            const double wave = std::sin(x * (0.004 + 0.002 * hill) + 1.7 * hill) + 0.4 * std::sin(x * 0.013 + hill);
            const int y = static_cast<int>(picture.rows * (0.45 + 0.13 * hill) + wave * picture.rows * 0.07);
            cv::line(picture, {x, y}, {x, picture.rows - 1}, colour);
        }
    }
    cv::rectangle(picture, {0, 0}, {picture.cols - 1, picture.rows - 1}, cv::Scalar(60, 55, 55), 4);
}

cv::Mat drawSheet() {
    cv::Mat page(kHeight, kWidth, CV_8UC3, cv::Scalar(248, 245, 236));
    cv::putText(page, "ON STRAIGHT LINES", {kMargin, 420}, cv::FONT_HERSHEY_TRIPLEX, 4.4, cv::Scalar(150, 38, 40), 8,
                cv::LINE_AA);
    cv::line(page, {kMargin, 480}, {kWidth - kMargin, 480}, cv::Scalar(60, 55, 55), 4, cv::LINE_AA);
    drawText(page, 610, 14, 0);
    drawPicture(page(cv::Rect(kMargin, 1700, kWidth - 2 * kMargin, 760)));
    drawText(page, 2590, 9, 2);
    return page;
}

// What all pages of a run share, at their resolution: the sheet, the light on it and a stock of noise.
class Scanner {
public:
    Scanner(int dpi, unsigned seed) {
        const double scale = static_cast<double>(dpi) / kDpi;
        cv::resize(drawSheet(), sheet_, {}, scale, scale, dpi < kDpi ? cv::INTER_AREA : cv::INTER_CUBIC);
        light_.create(sheet_.size(), CV_32FC3);
        for (int y = 0; y < light_.rows; ++y)
            for (int x = 0; x < light_.cols; ++x) {
                const double dx = 2.0 * x / light_.cols - 1.1;
                const double dy = 2.0 * y / light_.rows - 0.9;
                light_.at<cv::Vec3f>(y, x) = cv::Vec3f::all(static_cast<float>(1.0 - 0.10 * dx * dx - 0.06 * dy * dy));
            }
        cv::Mat grain(sheet_.rows + kNoiseShifts, sheet_.cols + kNoiseShifts, CV_16S);
        cv::RNG(seed).fill(grain, cv::RNG::NORMAL, 0, 5);
        cv::merge(std::vector<cv::Mat>(3, grain), noise_);
    }

    // Turned clockwise for a positive skew, on the dark lid of the scanner.
    cv::Mat scan(double degrees, unsigned page) const {
        const cv::Point2f centre(static_cast<float>(sheet_.cols) / 2, static_cast<float>(sheet_.rows) / 2);
        cv::Mat result;
        cv::warpAffine(sheet_, result, cv::getRotationMatrix2D(centre, -degrees, 1.0), sheet_.size(), cv::INTER_CUBIC,
                       cv::BORDER_CONSTANT, cv::Scalar(58, 56, 60));
        cv::multiply(result, light_, result, 1.0, CV_8U);
        std::mt19937 engine(page);
        const cv::Point shift(static_cast<int>(engine() % kNoiseShifts), static_cast<int>(engine() % kNoiseShifts));
        cv::add(result, noise_(cv::Rect(shift, sheet_.size())), result, cv::noArray(), CV_8U);
        return result;
    }

private:
    static constexpr int kNoiseShifts = 256;    // in both directions

    cv::Mat sheet_, light_, noise_;
};

void writeJpeg(const cv::Mat& page, int dpi, const std::string& file) {
    const KVIMG image = {page.data,
                         page.channels() * 8,
                         page.cols,
                         page.rows,
                         static_cast<int32_t>(page.step[0]),
                         static_cast<int32_t>(page.step[0] * static_cast<size_t>(page.rows))};
    void* data = nullptr;
    unsigned size = 0;
    const OSErr err = CompressJPEG(&image, dpi, 788, &data, &size);
    const std::unique_ptr<void, void (*)(void*)> owner(data, std::free);
    std::ofstream out(file, std::ios::binary);
    if (err == noErr) out.write(static_cast<const char*>(data), size);
    if (err != noErr || !out.flush()) throw std::runtime_error(file + " cannot be written");
}

int run(int argc, char** argv) {
    double skew = 2.3;
    unsigned seed = 1;
    int count = 0;
    int dpi = kDpi;
    std::string target;
    bool grey = false;
    CLI::App app("Draws scanned A4 pages.", "pagegen");
    app.add_option("--skew", skew, "Degrees by which the page is turned clockwise; of many pages, the largest skew")
        ->capture_default_str();
    app.add_option("--seed", seed, "Seed of the noise")->capture_default_str();
    app.add_option("--dpi", dpi, "Resolution")->check(CLI::Range(30, 1200))->capture_default_str();
    app.add_option("--count", count, "Draw this many pages, TARGET/page-000001.jpg and on, of different skews")
        ->check(CLI::PositiveNumber);
    app.add_flag("--grey", grey, "Grey instead of colour");
    app.add_option("target", target, "JPEG to write; with --count, the folder to write to")->required();
    CLI11_PARSE(app, argc, argv);

    const Scanner scanner(dpi, seed);
    const auto draw = [&](const std::string& file, double degrees, unsigned page) {
        cv::Mat image = scanner.scan(degrees, page);
        if (grey) cv::cvtColor(image, image, cv::COLOR_RGB2GRAY);
        writeJpeg(image, dpi, file);
        std::printf("%s: %d x %d, %d dpi, skew %.2f degrees\n", file.c_str(), image.cols, image.rows, dpi, degrees);
    };
    if (count == 0) draw(target, skew, seed);
    std::mt19937 engine(seed);
    std::uniform_real_distribution<double> skews(-skew, skew);
    for (int i = 1; i <= count; ++i) {
        char name[32];
        std::snprintf(name, sizeof(name), "/page-%06d.jpg", i);
        draw(target + name, skews(engine), seed + static_cast<unsigned>(i));
    }
    return 0;
}

}    // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "pagegen: %s\n", e.what());
        return 2;
    }
}
