#include "audiodecoder.h"

#include "mediasource.h"

#include <QThread>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace {

constexpr int nothingCame = -1;
constexpr double aheadLimit = 60.0; // seconds of sound that may wait for the clock
constexpr unsigned long aheadPauseMs = 1;
constexpr double outputSampleBytes = 2.0;

bool isFarAhead(MediaSource& source)
{
    const double buffered = source.audioFrames.totalValues()
        / (static_cast<double>(source.outputChannels) * source.sampleRate);
    return buffered > aheadLimit
        && source.audioFrames.endTime() - source.soundNeededTime() > aheadLimit;
}

} // namespace

AudioDecoder::AudioDecoder(MediaSource& source)
    : m_source(source)
    , m_frame(makeFrame())
    , m_converter(source.outputChannels, source.sampleRate)
{
}

int AudioDecoder::decodeNext()
{
    waitForClock();
    if (m_receiving) {
        const int stored = receive();
        if (m_receiving) {
            return stored;
        }
    }
    const bool delays = (m_source.audioCodec->codec->capabilities & AV_CODEC_CAP_DELAY) != 0;
    AvPtr<AVPacket> packet;
    do {
        packet = m_source.audioPackets.get();
    } while (packet && packet->size == PacketQueue::endOfStreamSize && !delays);
    if (!packet) {
        return nothingCame;
    }
    switch (packet->size) {
    case PacketQueue::endOfStreamSize:
        return drain();
    case PacketQueue::flushSize:
        return flush(*packet);
    default:
        return decode(*packet);
    }
}

/// A seek ends the wait too: its flush marker lies in the queue.
void AudioDecoder::waitForClock() const
{
    while (m_source.soundMayWait() && !m_source.abortRequested && !m_source.audioFrames.discarding
        && isFarAhead(m_source)) {
        QThread::msleep(aheadPauseMs);
    }
}

int AudioDecoder::decode(const AVPacket& packet)
{
    if (packet.pts != AV_NOPTS_VALUE) {
        m_decodedTime = static_cast<double>(packet.pts) * av_q2d(m_source.audioStream->time_base);
    }
    if (m_drained) {
        return nothingCame;
    }
    m_receiving = true;
    if (avcodec_send_packet(m_source.audioCodec.get(), &packet) < 0) {
        return nothingCame;
    }
    return receive();
}

int AudioDecoder::drain()
{
    if (!m_drained) {
        m_drained = true;
        m_receiving = avcodec_send_packet(m_source.audioCodec.get(), nullptr) >= 0;
    }
    const int stored = m_receiving ? receive() : 0;
    return stored > 0 ? stored : 0;
}

int AudioDecoder::flush(const AVPacket& marker)
{
    m_source.stopDiscarding(m_source.audioFrames.discarding, marker.pts);
    m_decodedTime = 0.0;
    avcodec_flush_buffers(m_source.audioCodec.get());
    m_converter.reset();
    m_receiving = false;
    m_drained = false;
    return 0;
}

/// One frame out of the codec. A damaged one ends what its packet has to give, but not the
/// draining, which goes on until the codec says that it is empty.
int AudioDecoder::receive()
{
    const int result = avcodec_receive_frame(m_source.audioCodec.get(), m_frame.get());
    if (result >= 0) {
        return store();
    }
    m_receiving = m_drained && result != AVERROR_EOF && result != AVERROR(EAGAIN);
    return nothingCame;
}

int AudioDecoder::store()
{
    auto block = m_converter.convert(*m_frame, m_decodedTime);
    const double outputBytesPerSecond = outputSampleBytes
        * m_source.audioCodec->ch_layout.nb_channels * m_source.audioCodec->sample_rate;
    if (outputBytesPerSecond > 0.0) {
        m_decodedTime += m_frame->linesize[0] / outputBytesPerSecond;
    }
    if (!block || block->sampleCount < 1) {
        return 0;
    }
    const int stored = block->sampleCount;
    m_source.audioFrames.put(std::move(block), m_source.sampleRate, m_source.soundReferenceTime());
    return stored;
}
