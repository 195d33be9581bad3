#include "scrubslice.h"

#include <algorithm>

void ScrubSlice::copyBlock(int16_t* out, int frameCount) const
{
    const ptrdiff_t availableFrames = scratchValues / channels;
    const ptrdiff_t first =
        forward ? ptrdiff_t{ position } : ptrdiff_t{ frameCount } + frames - 2 - position;
    const ptrdiff_t step = forward ? 1 : -1;
    for (ptrdiff_t i = 0; i < frameCount; ++i) {
        const ptrdiff_t from = first + i * step;
        int16_t* const to = out + i * channels;
        if (from >= 0 && from < availableFrames) {
            std::copy_n(scratch + from * channels, channels, to);
        } else {
            std::fill_n(to, channels, int16_t{ 0 });
        }
    }
}

int fittingScrubFrames(int wanted, int channels, ptrdiff_t scratchValues)
{
    return static_cast<int>(std::min<ptrdiff_t>(wanted, scratchValues / channels));
}
