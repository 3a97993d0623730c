#include "rows.h"

void addFilters(std::vector<Row>& rows) {
    static const std::vector<int> cells(9 * 9, 1);
    static const std::vector<float> weights(3 * 9 * 9, 0.01F);
    for (const int side : {3, 4, 9}) {
        rows.push_back({"ippiFilter", sides(side) + ", C3", 3, [=](Scene& s) {
                            return ippiFilter(s.src(3), s.step, 16, s.dst(3), s.step, s.size, cells.data(),
                                              square(side), centre(side), side * side);
                        }});
        rows.push_back({"IPPShare_ippiFilter_8u_C1R", sides(side), 1, [=](Scene& s) {
                            return IPPShare_ippiFilter_8u_C1R(s.src(1), s.step, s.dst(1), s.step, s.size, cells.data(),
                                                              square(side), centre(side), side * side);
                        }});
        rows.push_back({"IPPShare_ippiFilter_8u_C3R", sides(side), 3, [=](Scene& s) {
                            return IPPShare_ippiFilter_8u_C3R(s.src(3), s.step, s.dst(3), s.step, s.size, cells.data(),
                                                              square(side), centre(side), side * side);
                        }});
        rows.push_back({"IPPShare_ippiFilter_16s_C1R", sides(side), 2, [=](Scene& s) {
                            return IPPShare_ippiFilter_16s_C1R(s.src16(), s.step, s.dst16(), s.step, s.size,
                                                               cells.data(), square(side), centre(side), side * side);
                        }});
        rows.push_back({"ippiFilter32f", sides(side) + ", C3", 3, [=](Scene& s) {
                            return ippiFilter32f(s.src(3), s.step, 16, s.dst(3), s.step, s.size, weights.data(),
                                                 square(side), centre(side));
                        }});
        rows.push_back({"IPPMini_ippiFilter32f_8u_C3R", sides(side), 3, [=](Scene& s) {
                            return IPPMini_ippiFilter32f_8u_C3R(s.src(3), s.step, s.dst(3), s.step, s.size,
                                                                weights.data(), square(side), centre(side));
                        }});
    }
    for (const int side : {3, 9})
        rows.push_back({"IPPMini_ippiFilterBox_8u_C3IR", sides(side), 3, [=](Scene& s) {
                            return IPPMini_ippiFilterBox_8u_C3IR(s.src(3), s.step, s.size, square(side), centre(side));
                        }});
    for (const int radius : {1, 4}) {
        rows.push_back({"Convolution24MonoFilter", "radius " + std::to_string(radius), 0, [=](Scene& s) {
                            return always(
                                [&] { Convolution24MonoFilter(s.src(3), s.dst(3), s.size, radius, weights.data()); });
                        }});
        rows.push_back({"Convolution24", "radius " + std::to_string(radius), 0, [=](Scene& s) {
                            return Convolution24(s.src(3), s.dst(3), s.size, radius, weights.data()) ? 0 : 1;
                        }});
    }
    for (const int side : {3, 5, 9})
        rows.push_back({"OPCV_ippiFilterBilateral_8u_C1R", sides(side), 1, [=](Scene& s) {
                            return OPCV_ippiFilterBilateral_8u_C1R(s.src(1), s.step, s.dst(1), s.step, s.size,
                                                                   square(side), 480, 480);
                        }});
    for (const int mode : {1, 2}) {
        const std::string shape = "mode " + std::to_string(mode) + ", strength 5";
        rows.push_back({"DeosNr", shape, 0,
                        [=](Scene& s) { return always([&] { DeosNr(s.src(1), s.dst(1), s.size, mode, 5); }); }});
        rows.push_back({"DeosNrRGB", shape, 0,
                        [=](Scene& s) { return DeosNrRGB(s.src(3), s.dst(3), s.size.width, s.size.height, mode, 5); }});
    }
    rows.push_back({"OPCV_cblas_sgemm", "400 x 400", 0, [](Scene& /*s*/) {
                        static const std::vector<float> a(400 * 400, 0.5F);
                        static std::vector<float> c(400 * 400);
                        return always([&] {
                            OPCV_cblas_sgemm(101, 111, 111, 400, 400, 400, 1, a.data(), 400, a.data(), 400, 0, c.data(),
                                             400);
                        });
                    }});
    rows.push_back({"ddct", "256 x 256", 0, [](Scene& /*s*/) {
                        static std::vector<double> values(256 * 256, 1.5);
                        static std::vector<double*> table(256);
                        for (size_t i = 0; i < 256; ++i) table[i] = values.data() + 256 * i;
                        return always([&] { ddct(0, table.data(), 256); });
                    }});
}
