#include <cstdio>

#include "OPCV_dlib.h"
#include "interposer.h"

namespace {

bool report(const char* name, bool good) {
    std::printf("%s: %s\n", name, good ? "taken over" : "NOT taken over");
    return good;
}

}    // namespace

int main() {
    bool good = report("IPPShare_ippStaticInit", IPPShare_ippStaticInit() == TAKEN && takenCalls == 1);

    int step = 0;
    unsigned char* image = IPPMini_ippiMalloc_8u_C3(4, 4, &step);
    IPPShare_ippiFree(image);
    good = report("IPPShare_ippiFree", image && takenCalls == 2) && good;

    const unsigned char source[9] = {};
    unsigned char median = 0;
    const IppStatus status = IPPMini_ippiFilterMedian_8u_C1R(source + 4, 3, &median, 1, {1, 1}, {3, 3}, {1, 1});
    good = report("IPPMini_ippiFilterMedian_8u_C1R", status == TAKEN && takenCalls == 3) && good;
    return good ? 0 : 1;
}
