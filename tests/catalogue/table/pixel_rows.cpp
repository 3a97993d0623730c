#include <array>

#include "rows.h"

void addPixel(std::vector<Row>& rows) {
    rows.push_back({"IPPShare_ippiConvert_1u8u_C1R", "", 1, [](Scene& s) {
                        return IPPShare_ippiConvert_1u8u_C1R(s.src(1), s.step, 3, s.dst(1), s.step, s.size);
                    }});
    rows.push_back({"Convert_1u8u_C1R", "", 1, [](Scene& s) {
                        return always([&] {
                            Convert_1u8u_C1R(s.src(1), s.step, 3, s.dst(1), s.step, s.size.width, s.size.height);
                        });
                    }});
    rows.push_back({"IPPShare_ippiReduceBits_8u1u_C1R", "", 1, [](Scene& s) {
                        return IPPShare_ippiReduceBits_8u1u_C1R(s.src(1), s.step, s.dst(1), s.step, 3, s.size, 0, 0, 0,
                                                                127);
                    }});
    rows.push_back({"Convert_8u1u_C1R", "", 1, [](Scene& s) {
                        return always([&] {
                            Convert_8u1u_C1R(s.src(1), s.step, s.dst(1), s.step, 3, s.size.width, s.size.height, 127);
                        });
                    }});
    rows.push_back({"IPPShare_ippiConvert_8u16s_C1R", "", 1, [](Scene& s) {
                        return IPPShare_ippiConvert_8u16s_C1R(s.src(1), s.step, s.dst16(), s.step, s.size);
                    }});
    rows.push_back({"IPPShare_ippiConvert_16s8u_C1R", "", 2, [](Scene& s) {
                        return IPPShare_ippiConvert_16s8u_C1R(s.src16(), s.step, s.dst(1), s.step, s.size);
                    }});
    rows.push_back({"IPPShare_ippiThreshold_LTVal_8u_C1IR", "", 1,
                    [](Scene& s) { return IPPShare_ippiThreshold_LTVal_8u_C1IR(s.src(1), s.step, s.size, 100, 0); }});
    rows.push_back({"IPPShare_ippiThreshold_LTVal_16s_C1IR", "", 2,
                    [](Scene& s) { return IPPShare_ippiThreshold_LTVal_16s_C1IR(s.src16(), s.step, s.size, 100, 0); }});
    rows.push_back({"Threshold_LTVal_8u_C1IR", "", 1, [](Scene& s) {
                        return always(
                            [&] { Threshold_LTVal_8u_C1IR(s.src(1), s.step, s.size.width, s.size.height, 100, 0); });
                    }});
    rows.push_back({"Threshold_LTVal_16s_C1IR", "", 2, [](Scene& s) {
                        return always(
                            [&] { Threshold_LTVal_16s_C1IR(s.src16(), s.step, s.size.width, s.size.height, 100, 0); });
                    }});
    rows.push_back({"IPPShare_ippiSet_8u_C1R", "", 1,
                    [](Scene& s) { return IPPShare_ippiSet_8u_C1R(200, s.dst(1), s.step, s.size); }});
    rows.push_back({"IPPShare_ippiRGBToYUV_8u_C3R", "", 3,
                    [](Scene& s) { return IPPShare_ippiRGBToYUV_8u_C3R(s.src(3), s.step, s.dst(3), s.step, s.size); }});
    rows.push_back({"IPPShare_ippiYUVToRGB_8u_C3R", "", 3,
                    [](Scene& s) { return IPPShare_ippiYUVToRGB_8u_C3R(s.src(3), s.step, s.dst(3), s.step, s.size); }});
    const auto toPlanes = [&rows](const char* name, auto function) {
        rows.push_back({name, "", 3, [=](Scene& s) {
                            const auto planes = s.planesOf(s.dst(1));
                            return function(s.src(3), s.step, planes.data(), s.step, s.size);
                        }});
    };
    const auto fromPlanes = [&rows](const char* name, auto function) {
        rows.push_back({name, "", 1, [=](Scene& s) {
                            const auto planes = s.planesOf(s.src(1));
                            const std::array<const uint8_t*, 3> from = {planes[0], planes[1], planes[2]};
                            return function(from.data(), s.step, s.dst(3), s.step, s.size);
                        }});
    };
    toPlanes("IPPMini_ippiRGBToYUV_8u_C3P3R", IPPMini_ippiRGBToYUV_8u_C3P3R);
    fromPlanes("IPPMini_ippiYUVToRGB_8u_P3C3R", IPPMini_ippiYUVToRGB_8u_P3C3R);
    toPlanes("IPPMini_ippiCopy_8u_C3P3R", IPPMini_ippiCopy_8u_C3P3R);
    fromPlanes("IPPMini_ippiCopy_8u_P3C3R", IPPMini_ippiCopy_8u_P3C3R);
}
