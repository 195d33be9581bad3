#include "audioframebuffer.h"

#include "scopedlock.h"

#include <algorithm>

namespace {

constexpr double keptSeconds = 1.0; // sound kept before the reference time
constexpr float driftLimit = 0.01F; // seconds; sound within it counts as in sync
constexpr double driftCarry = 0.01; // share of the last drift that is added to the next
constexpr double loudest = 32767.0;
constexpr double lowest = -32768.0;

int16_t amplified(int16_t sample, double gain)
{
    const double value = std::min(sample * gain, loudest);
    return static_cast<int16_t>(std::max(value, lowest));
}

} // namespace

DecodedAudioFrame::DecodedAudioFrame(int values, int sampleFrames, double startTime)
    : samples(std::make_unique<int16_t[]>(static_cast<size_t>(values)))
    , valueCount(values)
    , sampleCount(sampleFrames)
    , time(startTime)
{
}

void AudioFrameBuffer::put(
    std::unique_ptr<DecodedAudioFrame> frame, int sampleRate, double referenceTime)
{
    std::unique_ptr<DecodedAudioFrame>
        dropped; // freed after the lock: the callback may wait for it
    const ScopedLock lock(m_mutex);
    if (discarding) {
        return;
    }
    if (!m_frames.empty() && referenceTime > m_firstTime + keptSeconds) {
        dropped = std::move(m_frames.front());
        m_frames.pop_front();
        m_totalValues -= dropped->valueCount;
        if (m_readIndex > 0) {
            --m_readIndex;
        } else {
            forgetReadPosition(); // the frame being read is the one that went
        }
    }
    m_totalValues += frame->valueCount;
    m_endTime = static_cast<double>(frame->sampleCount) / sampleRate + frame->time;
    m_frames.push_back(std::move(frame));
    m_firstTime = m_frames.front()->time;
}

int AudioFrameBuffer::read(
    int16_t* out, int frameCount, int channels, int sampleRate, double time, double gain)
{
    const ScopedLock lock(m_mutex);
    int written = 0;
    while (written < frameCount) {
        int16_t* const next = out + static_cast<ptrdiff_t>(written) * channels;
        if (m_remaining < 1
            && !startFrame(sampleRate, static_cast<double>(written) / sampleRate + time)) {
            std::fill(next, out + static_cast<ptrdiff_t>(frameCount) * channels, int16_t{ 0 });
            return frameCount;
        }
        written += copy(next, frameCount - written, channels, gain);
    }
    return written;
}

/// Moves on to the frame for `now`, the output time of the next sample frame; late frames are
/// skipped whole and the missed start of one is skipped within it. False when nothing is left to
/// play.
bool AudioFrameBuffer::startFrame(int sampleRate, double now)
{
    const int count = static_cast<int>(m_frames.size());
    m_remaining = 0;
    while (m_remaining < 1) {
        if (m_readIndex + 1 >= count) {
            return false;
        }
        ++m_readIndex;
        while (m_readIndex + 1 < count && m_frames[m_readIndex + 1]->time <= now) {
            ++m_readIndex;
        }
        const DecodedAudioFrame& frame = *m_frames[m_readIndex];
        m_remaining = frame.sampleCount;
        const double drift = correctedDrift(now - frame.time);
        if (drift > driftLimit) {
            // As a double: a frame hours late would not fit the integer.
            m_remaining -= static_cast<int>(std::min<double>(drift * sampleRate, m_remaining));
        }
    }
    return true;
}

/// Sound that is early is played at once, never held back; only late sound counts as drift.
double AudioFrameBuffer::correctedDrift(double drift)
{
    if (drift < driftLimit) {
        forgetSync();
        return drift;
    }
    if (m_syncCount <= 0) {
        drift += m_driftAccum * driftCarry;
        ++m_syncCount;
    } else {
        m_syncCount = 1;
    }
    m_driftAccum = drift;
    return drift;
}

int AudioFrameBuffer::copy(int16_t* out, int frameCount, int channels, double gain)
{
    const DecodedAudioFrame& frame = *m_frames[m_readIndex];
    Q_ASSERT(frame.valueCount == frame.sampleCount * channels);
    const int count = std::min(frameCount, m_remaining);
    const ptrdiff_t values = static_cast<ptrdiff_t>(count) * channels;
    const int16_t* const from =
        frame.samples.get() + frame.valueCount - static_cast<ptrdiff_t>(m_remaining) * channels;
    std::transform(
        from, from + values, out, [gain](int16_t sample) { return amplified(sample, gain); });
    m_remaining -= count;
    return count;
}

void AudioFrameBuffer::clear()
{
    std::deque<std::unique_ptr<DecodedAudioFrame>> dropped; // freed after the lock
    const ScopedLock lock(m_mutex);
    m_frames.swap(dropped);
    m_totalValues = 0;
    m_firstTime = 0.0;
    m_endTime = 0.0;
    forgetReadPosition();
    forgetSync();
}

void AudioFrameBuffer::resetReadPosition()
{
    const ScopedLock lock(m_mutex);
    forgetReadPosition();
}

void AudioFrameBuffer::resetSync()
{
    const ScopedLock lock(m_mutex);
    forgetSync();
}

void AudioFrameBuffer::forgetReadPosition()
{
    m_remaining = 0;
    m_readIndex = -1;
}

void AudioFrameBuffer::forgetSync()
{
    m_driftAccum = 0.0;
    m_syncCount = 0;
}

int AudioFrameBuffer::frameCount()
{
    const ScopedLock lock(m_mutex);
    return static_cast<int>(m_frames.size());
}

int AudioFrameBuffer::totalValues()
{
    const ScopedLock lock(m_mutex);
    return m_totalValues;
}

double AudioFrameBuffer::endTime()
{
    const ScopedLock lock(m_mutex);
    return m_endTime;
}
