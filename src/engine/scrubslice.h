#pragma once

#include <cstddef>
#include <cstdint>

/// The short slice of sound that is heard after a positioning, lying in a scratch array that is
/// silent beyond it. Numbers in, numbers out; nothing here reads or writes outside the arrays,
/// whatever the numbers.
struct ScrubSlice {
    const int16_t* scratch; // interleaved samples
    ptrdiff_t scratchValues; // int16 values in the scratch array
    int channels;
    int frames; // sample frames of the slice
    int position; // sample frames played before this block
    bool forward;

    /// Writes the block of `frameCount` sample frames that starts at `position`. Backwards, each
    /// block is reversed and blocks run from the end of the slice to its start; the first one
    /// begins `frameCount` - 1 frames beyond the slice's last frame.
    void copyBlock(int16_t* out, int frameCount) const;
};

/// `wanted` sample frames, or as many of them as a scratch array of `scratchValues` holds.
int fittingScrubFrames(int wanted, int channels, ptrdiff_t scratchValues);
