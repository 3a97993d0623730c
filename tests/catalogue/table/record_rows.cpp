#include "kept.h"
#include "rows.h"

void addRecords(std::vector<Row>& rows) {
    const KVRect all = {0, 0, kPage.height, kPage.width};
    rows.push_back({"IppInit", "", 0, [](Scene& /*s*/) { return IppInit(); }});
    rows.push_back({"IPPMini_ippStaticInit", "", 0, [](Scene& /*s*/) { return IPPMini_ippStaticInit(); }});
    rows.push_back({"IPPShare_ippStaticInit", "", 0, [](Scene& /*s*/) { return IPPShare_ippStaticInit(); }});
    rows.push_back({"KVSetRect", "", 0, [](Scene& /*s*/) {
                        KVRect rectangle{};
                        return always([&] { KVSetRect(&rectangle, 0, 0, 1, 1); });
                    }});
    const auto creator = [&](const char* name, auto function) {
        rows.push_back({name, "24 bits", 0, [=](Scene& /*s*/) {
                            KVIMG* out = nullptr;
                            const int status = function(&out, &all, 24);
                            return keep(status, out);
                        }});
    };
    creator("CreateNewKVIMGPtr", CreateNewKVIMGPtr);
    creator("CreateNewKVIMGPtrForUnite", CreateNewKVIMGPtrForUnite);
    rows.push_back({"DisposeKVIMG", "", 0, [](Scene& /*s*/) { return always([] { DisposeKVIMG(nullptr); }); }});
    rows.push_back({"IPPShare_ippiMalloc_16s_C1", "", 0, [](Scene& /*s*/) {
                        int step = 0;
                        return keepBlock(0, IPPShare_ippiMalloc_16s_C1(kPage.width, kPage.height, &step));
                    }});
    rows.push_back({"IPPMini_ippiMalloc_8u_C3", "", 0, [](Scene& /*s*/) {
                        int step = 0;
                        return keepBlock(0, IPPMini_ippiMalloc_8u_C3(kPage.width, kPage.height, &step));
                    }});
    rows.push_back({"IPPMini_ippiFree", "", 0, [](Scene& /*s*/) { return always([] { IPPMini_ippiFree(nullptr); }); }});
    rows.push_back(
        {"IPPShare_ippiFree", "", 0, [](Scene& /*s*/) { return always([] { IPPShare_ippiFree(nullptr); }); }});
}
