#include <initializer_list>

#include "rows.h"

namespace {

template <class Function>
void addMedian(std::vector<Row>& rows, const char* name, Function median, int pixelSize,
               std::initializer_list<int> masks) {
    for (const int side : masks)
        rows.push_back({name, sides(side), pixelSize, [=](Scene& s) {
                            return median(s.src(pixelSize), s.step, s.dst(pixelSize), s.step, s.size, square(side),
                                          centre(side));
                        }});
}

template <class Function>
void addKernel(std::vector<Row>& rows, const char* name, Function kernel, int pixelSize) {
    rows.push_back({name, "", pixelSize, [=](Scene& s) {
                        return always([&] {
                            kernel(s.src(pixelSize), s.step, s.dst(pixelSize), s.step, s.size.width, s.size.height);
                        });
                    }});
}

}    // namespace

void addRank(std::vector<Row>& rows) {
    for (const int side : {3, 9, 11})
        rows.push_back({"ippiFilterMedian", sides(side) + ", C3", 3, [=](Scene& s) {
                            return ippiFilterMedian(s.src(3), s.step, 16, s.dst(3), s.step, s.size, square(side),
                                                    centre(side));
                        }});
    addMedian(rows, "IPPShare_ippiFilterMedian_8u_C1R", IPPShare_ippiFilterMedian_8u_C1R, 1, {3, 9, 11});
    addMedian(rows, "IPPMini_ippiFilterMedian_8u_C1R", IPPMini_ippiFilterMedian_8u_C1R, 1, {3});
    addMedian(rows, "IPPShare_ippiFilterMedian_8u_C3R", IPPShare_ippiFilterMedian_8u_C3R, 3, {3, 9, 11});
    for (const int mask : {33, 55})
        rows.push_back({"IPPShare_ippiFilterMedianCross_8u_C1R", "mask " + std::to_string(mask), 1, [=](Scene& s) {
                            return IPPShare_ippiFilterMedianCross_8u_C1R(s.src(1), s.step, s.dst(1), s.step, s.size,
                                                                         mask);
                        }});
    addKernel(rows, "FilterMedianCross3x3_8u_C1R", FilterMedianCross3x3_8u_C1R, 1);
    addKernel(rows, "FilterMedianCross5x5_8u_C1R", FilterMedianCross5x5_8u_C1R, 1);
    rows.push_back({"IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R", "weight 3", 1, [](Scene& s) {
                        return IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R(s.src(1), s.step, s.dst(1), s.step,
                                                                                 s.size, 3);
                    }});
    addKernel(rows, "FilterMedianWeightedCenter3x3_3_8u_C1R", FilterMedianWeightedCenter3x3_3_8u_C1R, 1);
    addKernel(rows, "FilterMedianWeightedCenter3x3_5_8u_C1R", FilterMedianWeightedCenter3x3_5_8u_C1R, 1);
    rows.push_back({"IPPShare_ippiFilterMedianColor_8u_C3R", "", 3, [](Scene& s) {
                        return IPPShare_ippiFilterMedianColor_8u_C3R(s.src(3), s.step, s.dst(3), s.step, s.size, 33);
                    }});
    addKernel(rows, "FilterMedianColor3x3_8u_C3R", FilterMedianColor3x3_8u_C3R, 3);

    static const std::vector<uint8_t> cells(31 * 31, 1);
    const auto morphology = [&rows](const char* name, auto function) {
        for (const int side : {3, 31})
            rows.push_back({name, sides(side) + (side == 3 ? "" : ", all cells"), 1, [=](Scene& s) {
                                return function(s.src(1), s.step, s.dst(1), s.step, s.size, cells.data(), square(side),
                                                centre(side));
                            }});
    };
    morphology("IPPShare_ippiDilate_8u_C1R", IPPShare_ippiDilate_8u_C1R);
    morphology("IPPShare_ippiErode_8u_C1R", IPPShare_ippiErode_8u_C1R);
    addMedian(rows, "IPPMini_ippiFilterMax_8u_C1R", IPPMini_ippiFilterMax_8u_C1R, 1, {3, 31});
    addMedian(rows, "IPPMini_ippiFilterMin_8u_C1R", IPPMini_ippiFilterMin_8u_C1R, 1, {3, 31});
}
