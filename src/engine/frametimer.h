#pragma once

#include <cstdint>
#include <deque>

/// Gives every decoded picture its presentation time. Pictures leave the decoder in the order in
/// which they are shown, and each takes the decode time of the packet that released it; a picture
/// released without one comes one frame after the picture before. The result is the same however
/// many threads decode.
///
/// At a constant rate, and once many pictures and all so far had the time they name themselves,
/// that one counts from then on: it says the same, and packets may be skipped.
///
/// Times are in seconds on the playback clock's scale: the first picture of a file that starts late
/// is at 0.
class FrameTimer {
public:
    static constexpr int64_t noTime =
        INT64_MIN; // the media library's mark for a missing time stamp

    struct Stream {
        double timeBase = 0.0; // seconds per tick
        double frameRate = 25.0;
        double delay = 0.0; // seconds, subtracted from every time
        bool ignoresDecodeTimes = false; // the codec's decode times mean nothing
        bool hasConstantRate = false; // by all that the file says
    };

    struct Picture {
        int64_t releasedBy = noTime; // decode time of the packet that released it, ticks
        int64_t tag = noTime; // time stamp hung on the picture's buffer, ticks
        int64_t ownTime = noTime; // its own presentation time, ticks
        int repeatedFields = 0;
    };

    explicit FrameTimer(const Stream& stream);

    /// A packet went into the decoder, in this order.
    void packetSent(int64_t decodeTime);

    /// A picture came out.
    double timeOf(const Picture& picture);

    /// True when the last picture's time only follows from what came before it. Right after a flush
    /// that is not much: packets that the decoder dropped may lie between.
    [[nodiscard]] bool wasGuessed() const { return m_guessed; }

    /// The decoder was flushed after a seek.
    void flush();

    /// False until a picture has fixed where the file starts.
    [[nodiscard]] bool hasStart() const { return m_firstTimeSeen; }

    /// True once the pictures' own times count.
    [[nodiscard]] bool isRegular() const { return m_agreeing == regularFrom; }

    /// The time that a picture of a regular stream names itself, in ticks, comes to.
    [[nodiscard]] double timeOfOwn(int64_t ticks) const;

    /// The multiple of the frame duration that `seconds` stands for: containers with millisecond
    /// stamps write a frame up to 0.5 ms beside its exact start. Times off the grid stay as they
    /// are.
    static double onGrid(double seconds, double frameDuration);

private:
    static constexpr int regularFrom = 32; // pictures

    void skipPacketsUpTo(int64_t decodeTime);
    void compare(const Picture& picture, double time);
    [[nodiscard]] double rawTime(const Picture& picture) const;

    const Stream m_stream;
    const double m_frameDuration; // seconds
    std::deque<int64_t> m_sent; // decode times of packets that have released nothing yet
    double m_predictedTime = 0.0; // expected raw time of the next picture
    double m_startOffset = 0.0; // raw time of the first picture
    bool m_firstTimeSeen = false;
    bool m_guessed = false;
    bool m_decodeTimeMet = false; // since the last flush
    bool m_comparing = false; // until a picture's own time is another than its release
    bool m_firstOfRun = true; // no picture has come out since the start or the last flush
    int m_agreeing = 0; // pictures whose own time is that of their release
    double m_ownStart = 0.0; // raw own time of a picture at 0
};
