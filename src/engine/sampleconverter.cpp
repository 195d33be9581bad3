#include "sampleconverter.h"

#include "audioframebuffer.h"
#include "logger.h"

#include <QString>

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/frame.h>
#include <libavutil/samplefmt.h>
#include <libswresample/swresample.h>
}

#include <algorithm>
#include <cstring>
#include <limits>

namespace {

/// One sample of `width` bytes as 16 bits: unsigned 8 bits, signed 16 bits or a float; others are
/// silent.
int16_t sampleAt(const uint8_t* data, int width)
{
    switch (width) {
    case 1:
        return static_cast<int16_t>((*data << 8) ^ 0x8000);
    case 2: {
        int16_t value = 0;
        std::memcpy(&value, data, sizeof value);
        return value;
    }
    case 4: {
        float value = 0.0F;
        std::memcpy(&value, data, sizeof value);
        // The order of the limits turns what is not a number into the lowest value, never into an
        // overflow.
        return static_cast<int16_t>(std::min(32767.0F, std::max(-32768.0F, value * 32767.0F)));
    }
    default:
        return 0;
    }
}

} // namespace

SampleConverter::SampleConverter(int outputChannels, int outputRate)
    : m_outputChannels(outputChannels)
    , m_outputRate(outputRate)
{
}

void SampleConverter::reset()
{
    m_shape.reset();
    m_context.reset();
}

bool SampleConverter::isMadeFor(const AVFrame& frame) const
{
    return m_shape && m_shape->format == frame.format && m_shape->sample_rate == frame.sample_rate
        && av_channel_layout_compare(&m_shape->ch_layout, &frame.ch_layout) == 0;
}

void SampleConverter::rebuild(const AVFrame& frame)
{
    reset();
    m_shape = makeFrame();
    if (!m_shape || av_channel_layout_copy(&m_shape->ch_layout, &frame.ch_layout) < 0) {
        m_shape.reset();
        return;
    }
    m_shape->format = frame.format;
    m_shape->sample_rate = frame.sample_rate;

    const int channels = frame.ch_layout.nb_channels;
    AVChannelLayout input{};
    av_channel_layout_default(&input, channels);
    AVChannelLayout output{};
    av_channel_layout_default(&output, m_outputChannels);
    AVChannelLayout* const from =
        frame.ch_layout.order == AV_CHANNEL_ORDER_UNSPEC ? &input : &m_shape->ch_layout;
    SwrContext* context = nullptr;
    int result = swr_alloc_set_opts2(&context, channels == m_outputChannels ? from : &output,
        AV_SAMPLE_FMT_S16, m_outputRate, from, static_cast<AVSampleFormat>(frame.format),
        frame.sample_rate, 0, nullptr);
    m_context.reset(context);
    if (result >= 0) {
        result = swr_init(m_context.get());
    }
    if (result < 0) {
        m_context.reset();
        Logger::displayWarning(QStringLiteral(
            "No sound conversion from %1 to %2 channels; samples are copied as they are.")
                                   .arg(channels)
                                   .arg(m_outputChannels));
    }
}

std::unique_ptr<DecodedAudioFrame> SampleConverter::makeBlock(int sampleCount, double time) const
{
    if (sampleCount < 1 || sampleCount > std::numeric_limits<int>::max() / m_outputChannels) {
        return nullptr;
    }
    return std::make_unique<DecodedAudioFrame>(sampleCount * m_outputChannels, sampleCount, time);
}

std::unique_ptr<DecodedAudioFrame> SampleConverter::convert(const AVFrame& frame, double time)
{
    if (!isMadeFor(frame)) {
        rebuild(frame);
    }
    if (!m_context) {
        auto block = makeBlock(frame.nb_samples, time);
        if (block) {
            copyByHand(frame, *block);
        }
        return block;
    }
    const int room = swr_get_out_samples(m_context.get(), frame.nb_samples);
    auto block = makeBlock(room, time);
    if (!block) {
        return nullptr;
    }
    auto* out = reinterpret_cast<uint8_t*>(block->samples.get());
    const int count = swr_convert(m_context.get(), &out, room,
        const_cast<const uint8_t**>(frame.extended_data), frame.nb_samples);
    if (count >= 0) { // else the block stays as silence of the frame's length
        block->sampleCount = count;
        block->valueCount = count * m_outputChannels;
    }
    return block;
}

/// Channels that the output does not have are dropped; those that the frame does not have stay
/// silent.
void SampleConverter::copyByHand(const AVFrame& frame, DecodedAudioFrame& block) const
{
    const auto format = static_cast<AVSampleFormat>(frame.format);
    const bool planar = av_sample_fmt_is_planar(format) != 0;
    const int width = av_get_bytes_per_sample(format);
    const int channels = frame.ch_layout.nb_channels;
    const int stride = planar ? width : width * channels;
    for (int channel = 0; channel < std::min(channels, m_outputChannels); ++channel) {
        const uint8_t* from = planar
            ? frame.extended_data[channel]
            : frame.extended_data[0] + static_cast<ptrdiff_t>(channel) * width;
        int16_t* to = block.samples.get() + channel;
        for (int i = 0; i < frame.nb_samples; ++i, from += stride, to += m_outputChannels) {
            *to = sampleAt(from, width);
        }
    }
}
