#pragma once

#include "avhandles.h"

#include <memory>

struct DecodedAudioFrame;

/// Turns decoded sound of any format into interleaved signed 16-bit samples for the opened output.
/// The channels and the rate of the output are fixed; a frame of another format, layout or rate
/// than the last one's makes the conversion anew. Audio thread.
class SampleConverter {
public:
    SampleConverter(int outputChannels, int outputRate);

    /// The frame's sound as a block that starts at `time` (seconds); null where there is none to
    /// give.
    [[nodiscard]] std::unique_ptr<DecodedAudioFrame> convert(const AVFrame& frame, double time);

    /// After a seek: forgets what a change of rate holds back of the last frame.
    void reset();

private:
    [[nodiscard]] bool isMadeFor(const AVFrame& frame) const;
    void rebuild(const AVFrame& frame);
    [[nodiscard]] std::unique_ptr<DecodedAudioFrame> makeBlock(int sampleCount, double time) const;
    void copyByHand(const AVFrame& frame, DecodedAudioFrame& block) const;

    const int m_outputChannels;
    const int m_outputRate; // Hz
    AvPtr<AVFrame> m_shape; // format, rate and layout that m_context was made for; holds no samples
    AvPtr<SwrContext>
        m_context; // null where the library cannot convert: samples are copied by hand
};
