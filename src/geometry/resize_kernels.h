// Bilinear resize straight into a rectangle of the scaled image, bit for bit as OpenCV computes it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

struct BilinearJob {
    const uint8_t* source;
    ptrdiff_t sourceStep;
    int sourceWidth;    // pixels
    int sourceHeight;
    int channels;
    double xScale;    // source pixels a scaled pixel
    double yScale;
    int x;    // of the rectangle in the scaled image, which is all that is computed
    int y;
    int width;
    int height;
    uint8_t* target;    // receives the rectangle; shares no memory with the source
    ptrdiff_t targetStep;
};

// What each four neighbouring results of a row read, in the order in which vectors take them.
struct ColumnTable {
    std::vector<int32_t> firstBytes;    // of a block of source bytes
    std::vector<uint8_t> shuffles;      // of the block into pairs of 16-bit numbers
    std::vector<int16_t> weights;       // of the pairs
};

class BilinearResize {
public:
    // False where four results need more source bytes than a block holds: for great reductions, and for short rows.
    static bool canDo(const BilinearJob& job);

    explicit BilinearResize(const BilinearJob& job);

    // Computes some of the rectangle's rows.
    void run(int firstRow, int rowCount) const;

private:
    BilinearJob job_;
    ColumnTable columns_;
};
