#include "margin.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <stdexcept>
#include <vector>

void succeed(const Row& row, Scene& scene) {
    if (row.call(scene) != 0) throw std::runtime_error(row.name + " failed");
}

namespace {

enum class Side { kLeft, kAbove, kRight, kBelow };
enum class Change { kBlack, kWhite, kInverted };

// Changes one row or column of pixels, `distance` beside the region of the source.
void change(Scene& s, int pixelSize, Side side, int distance, Change how) {
    const bool column = side == Side::kLeft || side == Side::kRight;
    const int x0 = side == Side::kLeft ? -distance : side == Side::kRight ? s.size.width - 1 + distance : -kRoom;
    const int y0 = side == Side::kAbove ? -distance : side == Side::kBelow ? s.size.height - 1 + distance : -kRoom;
    const int columns = column ? 1 : s.size.width + 2 * kRoom;
    const int lines = column ? s.size.height + 2 * kRoom : 1;
    for (int y = y0; y < y0 + lines; ++y)
        for (int i = x0 * pixelSize; i < (x0 + columns) * pixelSize; ++i) {
            uint8_t& b = s.src(pixelSize)[ptrdiff_t{y} * s.step + i];
            b = how == Change::kBlack ? 0 : how == Change::kWhite ? 255 : static_cast<uint8_t>(~b);
        }
}

// What the call changes, in the target or, in place, in the source.
std::vector<uint8_t> effect(const Row& row, Scene& s) {
    std::vector<uint8_t> difference = s.source_;
    difference.insert(difference.end(), s.target_.begin(), s.target_.end());
    succeed(row, s);
    const size_t half = s.source_.size();
    for (size_t i = 0; i < half; ++i) {
        difference[i] = static_cast<uint8_t>(difference[i] ^ s.source_[i]);
        difference[half + i] = static_cast<uint8_t>(difference[half + i] ^ s.target_[i]);
    }
    return difference;
}

// The farthest row or column of pixels on a side that makes a difference.
int margin(const Row& row, Side side, const Scene& fresh) {
    Scene plain = fresh;
    const std::vector<uint8_t> expected = effect(row, plain);
    for (int distance = kRoom; distance > 0; --distance)
        for (const Change how : {Change::kBlack, Change::kWhite, Change::kInverted}) {
            Scene changed = fresh;
            change(changed, row.pixelSize, side, distance, how);
            if (effect(row, changed) != expected) return distance;
        }
    return 0;
}

}    // namespace

std::string marginText(const Row& row) {
    if (row.pixelSize == 0) return "";
    const Scene fresh(kSmall);
    std::array<int, 4> m = {margin(row, Side::kLeft, fresh), margin(row, Side::kAbove, fresh),
                            margin(row, Side::kRight, fresh), margin(row, Side::kBelow, fresh)};
    if (std::all_of(m.begin(), m.end(), [&](int n) { return n == m[0]; })) return std::to_string(m[0]);
    return std::to_string(m[0]) + ", " + std::to_string(m[1]) + ", " + std::to_string(m[2]) + ", " +
           std::to_string(m[3]);
}
