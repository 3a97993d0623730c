// What a call takes from the heap. The program has a malloc of its own, which OpenCV and libjpeg use as well.
#pragma once

#include <cstddef>
#include <functional>

namespace bench {

struct HeapUse {
    size_t peak = 0;      // most bytes that were held at once
    size_t blocks = 0;    // blocks that were asked for
};

HeapUse heapUseOf(const std::function<void()>& call);

}    // namespace bench
