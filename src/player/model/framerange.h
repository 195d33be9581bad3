#pragma once

/// The frames that are played, both ends included.
struct FrameRange {
    int start = 1;
    int end = 1;

    [[nodiscard]] bool contains(int frame) const { return start <= frame && frame <= end; }

    bool operator==(const FrameRange&) const = default;

    /// The nearest range inside a media of `last` frames: a start of 0 or less is the first frame,
    /// an end beyond the media the last one, an end before the start the start itself.
    static FrameRange clamped(int start, int end, int last);
};
