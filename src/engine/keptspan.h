#pragma once

#include <QMutex>

/// Which pictures behind the play head are kept: on its way to the target of a seek the decoder
/// keeps those from some time on, and more can be asked for while they are still ahead of it.
/// Nothing between where the span begins and the target has gone by unkept.
class KeptSpan {
public:
    KeptSpan();

    /// Demuxer, before the seek's flush marker. Seconds, both included.
    void begin(double from, double to);

    /// Video thread, at the flush marker: nothing has gone by yet.
    void flush();

    /// Video thread, for each picture or the packet that it comes from. True where it lies in the
    /// span, or starts at `recent` seconds or later and nothing behind it has gone by; else it has
    /// itself.
    [[nodiscard]] bool keeps(double seconds, double recent);

    /// Any thread. Widens the span down to `from`, but not to what has gone by or will have within
    /// `margin` seconds of film. Returns where the span begins then.
    double extend(double from, double margin);

    /// Any thread. The newest picture that has gone by, in seconds; -infinity where none has.
    [[nodiscard]] double passedTo() const;

private:
    mutable QMutex m_mutex; // guards all below
    double m_from = 0.0; // seconds
    double m_to = 0.0;
    double m_passedTo;
    double m_passedBefore; // the newest of those before the span
};
