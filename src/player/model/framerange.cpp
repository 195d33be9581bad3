#include "framerange.h"

#include <algorithm>

FrameRange FrameRange::clamped(int start, int end, int last)
{
    const int first = start > 0 ? std::min(start, last) : 1;
    return { first, end <= last ? std::max(first, end) : last };
}
