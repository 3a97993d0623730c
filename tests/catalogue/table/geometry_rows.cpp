#include "kept.h"
#include "rows.h"

void addGeometry(std::vector<Row>& rows, Documents& documents) {
    const auto region = [](IppiSize size) { return IppiRect{0, 0, size.width, size.height}; };
    rows.push_back({"ippiRotate", "C3, 2.3 degrees", 0, [=](Scene& s) {
                        return ippiRotate(s.src(3), s.size, s.step, region(s.size), s.dst(3), s.step, region(s.size),
                                          2.3, 0, 0, 0, 16, cv::Scalar(255));
                    }});
    rows.push_back({"ippiRotateCenter", "C3, 2.3 degrees", 0, [=](Scene& s) {
                        return ippiRotateCenter(s.src(3), s.size, s.step, region(s.size), s.dst(3), s.step,
                                                region(s.size), 2.3, 9, 9, 0, 16, cv::Scalar(255));
                    }});
    rows.push_back({"KVMac_ippiRotate_8u_C1R", "2.3 degrees", 0, [=](Scene& s) {
                        return KVMac_ippiRotate_8u_C1R(s.src(1), s.size, s.step, region(s.size), s.dst(1), s.step,
                                                       region(s.size), 2.3, 0, 0, 0);
                    }});
    rows.push_back({"KVMac_ippiRotate_8u_C3R", "2.3 degrees", 0, [=](Scene& s) {
                        return KVMac_ippiRotate_8u_C3R(s.src(3), s.size, s.step, region(s.size), s.dst(3), s.step,
                                                       region(s.size), 2.3, 0, 0, 0);
                    }});
    rows.push_back({"KVMac_ippiGetRotateShift", "", 0, [](Scene& /*s*/) {
                        double x = 0;
                        double y = 0;
                        return always([&] { KVMac_ippiGetRotateShift(10, 10, 2.3, &x, &y); });
                    }});
    for (Document* page : {&documents.grey, &documents.colour}) {
        const std::string depth = std::to_string(page->record->depth) + " bits";
        rows.push_back({"DeskewImageWithIPP", depth + ", 2.3 degrees", 0, [=](Scene& /*s*/) {
                            KVIMG* out = nullptr;
                            const int status = DeskewImageWithIPP(page->record.get(), page->handle(), &out, 0, 1, 2.3);
                            return keep(status, out);
                        }});
        rows.push_back({"DeskewImageWithIPPEx", depth + ", whole page, 2.3 degrees", 0, [=](Scene& /*s*/) {
                            KVRect crop = {0, 0, page->record->height, page->record->width};
                            KVIMG* out = nullptr;
                            const int status =
                                DeskewImageWithIPPEx(page->record.get(), page->handle(), &out, 0, 1, &crop, 2.3);
                            return keep(status, out);
                        }});
        rows.push_back({"DeskewImageWithIPPExWithShirftPoint", depth + ", 2.3 degrees", 0, [=](Scene& /*s*/) {
                            KVRect crop = {0, 0, page->record->height, page->record->width};
                            KVIMG* out = nullptr;
                            const int status = DeskewImageWithIPPExWithShirftPoint(page->record.get(), page->handle(),
                                                                                   &out, 0, 1, &crop, 0, 0, 2.3);
                            return keep(status, out);
                        }});
        rows.push_back({"RotateImageWithIPP", depth + ", 90 degrees", 0, [=](Scene& /*s*/) {
                            KVIMG* out = nullptr;
                            const int status = RotateImageWithIPP(page->record.get(), page->handle(), &out, 90);
                            return keep(status, out);
                        }});
        rows.push_back(
            {"UniteImageIplRotateImage", depth + ", 2.3 degrees", 0, [=](Scene& /*s*/) {
                 const KVIMG& from = *page->record;
                 const KVImageHeader image = {from.data, 0, from.depth, from.width, from.height, from.rowBytes};
                 KVImageHeader canvas = {
                     nullptr,     0,
                     from.depth,  from.width,
                     from.height, from.depth == 8 ? (from.width + 15) / 16 * 16 : (3 * from.width + 3) / 4 * 4};
                 KVIMG* out = nullptr;
                 const int status = UniteImageIplRotateImage(&canvas, &image, &out, 2.3);
                 return keep(status, out);
             }});
        rows.push_back({"ResizeImageWithIPPEx", depth + ", 300 to 200", 0, [=](Scene& /*s*/) {
                            KVIMG* out = nullptr;
                            const int status = ResizeImageWithIPPEx(page->record.get(), &out, 300, 200);
                            return keep(status, out);
                        }});
    }
    rows.push_back({"OPCV_ippiResizeSqrPixel_8u_C1R", "two thirds", 0, [=](Scene& s) {
                        return OPCV_ippiResizeSqrPixel_8u_C1R(s.src(1), s.size, s.step, region(s.size), s.dst(1),
                                                              s.step, region(s.size), 2 / 3.0, 2 / 3.0, 0, 0, 0,
                                                              nullptr);
                    }});
    rows.push_back({"IPPMini_ippiResize_8u_C3R", "two thirds", 0, [=](Scene& s) {
                        return IPPMini_ippiResize_8u_C3R(s.src(3), s.size, s.step, region(s.size), s.dst(3), s.step,
                                                         {s.size.width * 2 / 3, s.size.height * 2 / 3}, 1, 1, 0);
                    }});
}
