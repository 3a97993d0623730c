#include <cstdio>

#include "OPCV_dlib.h"

int main() {
    const int result = IPPShare_ippStaticInit();
    std::printf("IPPShare_ippStaticInit gave %d\n", result);
    return result == 4711 ? 0 : 1;
}
