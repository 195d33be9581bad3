#pragma once

#include <QMutex>

#include <atomic>
#include <cstdint>
#include <deque>
#include <memory>

/// One block of converted sound: interleaved signed 16-bit samples.
struct DecodedAudioFrame {
    /// `valueCount` int16 values = `sampleCount` sample frames x output channels; `time` of the
    /// first, in seconds. All silent until written to.
    DecodedAudioFrame(int valueCount, int sampleCount, double time);

    std::unique_ptr<int16_t[]> samples;
    int valueCount = 0;
    int sampleCount = 0;
    double time = 0.0;
};

/// Converted sound between the audio decoder (writes) and the output callback (reads). Locks
/// itself.
class AudioFrameBuffer {
public:
    /// Audio thread. Appends; while `discarding` the frame is thrown away. Drops at most one old
    /// frame a call: sound is kept from about one second before `referenceTime` (seconds, the start
    /// of the first cached picture or, without pictures, the clock).
    void put(std::unique_ptr<DecodedAudioFrame> frame, int sampleRate, double referenceTime);

    /// Audio callback: no allocation, no lock but this buffer's. Fills `out` with `frameCount`
    /// sample frames for the output time `time` (seconds), silence where nothing is buffered;
    /// returns the sample frames accounted for.
    int read(int16_t* out, int frameCount, int channels, int sampleRate, double time, double gain);

    /// Any thread. Forgets every frame and all read state; `discarding` stays as it is.
    void clear();

    /// Audio callback. The next read searches the frame for its time afresh.
    void resetReadPosition();
    /// Audio callback. Forgets the drift measured so far.
    void resetSync();

    /// Any thread.
    [[nodiscard]] int frameCount();
    [[nodiscard]] int totalValues();
    [[nodiscard]] double endTime(); // seconds, of the newest frame's last sample

    /// Set by the demuxer on a seek, cleared by the audio decoder at the flush marker.
    std::atomic<bool> discarding{ false };

private:
    bool startFrame(int sampleRate, double now);
    double correctedDrift(double drift);
    int copy(int16_t* out, int frameCount, int channels, double gain);
    void forgetReadPosition();
    void forgetSync();

    QMutex m_mutex; // guards everything below
    std::deque<std::unique_ptr<DecodedAudioFrame>> m_frames; // in decoding order
    int m_totalValues = 0;
    double m_firstTime = 0.0;
    double m_endTime = 0.0;
    int m_readIndex = -1; // of the frame being played
    int m_remaining = 0; // sample frames of it not yet played
    int m_syncCount = 0; // corrections since the last frame in sync
    double m_driftAccum = 0.0; // seconds, carried between corrections
};
