// Filters of whole pages, in place. Pixels too close to the edge for a window stay as they are.
#pragma once

#include "page.h"

enum class Median { kNone, kCross, kWeighted, kColour };

// The colour median takes colour pages; the others take colour pages one channel at a time. On a grey page the colour
// median is the weighted one.
void filterMedian(KVIMG& page, Median median);

// Strength 0 to 10.
void reduceNoise(KVIMG& page, int strength);
