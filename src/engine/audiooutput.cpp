#include "audiooutput.h"

#include "limitedcalls.h"
#include "logger.h"
#include "mediasource.h"
#include "scrubslice.h"

#include <portaudio.h>

#include <algorithm>
#include <chrono>
#include <mutex>
#include <utility>

namespace {

constexpr double audibleSpeed = 1.0; // sound is played at this speed alone

// Closes all streams, too.
void terminateLate(int)
{
    (void)Pa_Terminate();
}

LimitedCalls& soundCalls()
{
    static LimitedCalls calls(std::chrono::seconds(4));
    return calls;
}

void readAtClock(MediaSource& source, int16_t* out, int frameCount)
{
    source.audioFrames.read(out, frameCount, source.outputChannels, source.sampleRate,
        source.clockTime(true), source.volume);
}

void silence(const MediaSource& source, int16_t* out, int frameCount)
{
    std::fill_n(out, static_cast<ptrdiff_t>(frameCount) * source.outputChannels, int16_t{ 0 });
}

void fillScrubBuffer(MediaSource& source, int sliceFrames)
{
    int16_t* const scratch = source.audioScratch.get();
    std::fill_n(scratch, MediaSource::scratchSamples, int16_t{ 0 });
    readAtClock(source, scratch, sliceFrames);
    source.scrubPosition = 0;
    source.scrubBufferStale = false;
}

void playScrubSlice(MediaSource& source, int16_t* out, int frameCount, int sliceFrames)
{
    if (source.scrubBufferStale) {
        fillScrubBuffer(source, sliceFrames);
    }
    const ScrubSlice slice{ source.audioScratch.get(), MediaSource::scratchSamples,
        source.outputChannels, sliceFrames, source.scrubPosition, source.scrubForward };
    slice.copyBlock(out, frameCount);
    source.scrubPosition += frameCount;
    if (source.scrubPosition >= sliceFrames) {
        source.scrubRequested = false;
        source.scrubSampleCount = 0;
        source.scrubBufferStale = true;
    }
}

} // namespace

void fillOutput(MediaSource& source, int16_t* out, int frameCount)
{
    if (source.audioResyncRequested.exchange(false)) {
        source.audioFrames.resetReadPosition();
    }
    if (source.playing && source.clock.speed == audibleSpeed) {
        source.scrubBufferStale = true; // a slice that was called off half-way is not resumed
        readAtClock(source, out, frameCount);
        return;
    }
    const bool requested = source.scrubRequested.load(std::memory_order_acquire);
    const int sliceFrames = fittingScrubFrames(
        source.scrubSampleCount, source.outputChannels, MediaSource::scratchSamples);
    if (!requested || sliceFrames < 1) {
        source.scrubBufferStale = true;
        silence(source, out, frameCount);
        return;
    }
    playScrubSlice(source, out, frameCount, sliceFrames);
}

/// What the callbacks of a stream see. A stream that was given up lives on without its source.
struct AudioOutput::Stream {
    explicit Stream(MediaSource& mediaSource)
        : source(&mediaSource)
    {
    }

    void detach()
    {
        const std::lock_guard lock(mutex);
        source = nullptr;
    }

    static int callback(const void*, void* output, unsigned long frameCount,
        const PaStreamCallbackTimeInfo*, PaStreamCallbackFlags, void* userData)
    {
        auto* const stream = static_cast<Stream*>(userData);
        const std::lock_guard lock(stream->mutex);
        if (!stream->source) {
            return paAbort;
        }
        fillOutput(*stream->source, static_cast<int16_t*>(output), static_cast<int>(frameCount));
        return paContinue;
    }

    // On a thread of the library's, also where the stream is closed in order.
    static void finished(void* userData)
    {
        auto* const stream = static_cast<Stream*>(userData);
        const std::lock_guard lock(stream->mutex);
        if (stream->source && !stream->source->abortRequested) {
            Logger::displayWarning(QStringLiteral("Sound output: the device has gone"));
        }
    }

    PaStream* handle = nullptr;
    std::mutex mutex; // of `source`, from the callback's first call on
    MediaSource* source; // not owned; null once the stream was given up
};

AudioOutput::~AudioOutput()
{
    (void)close();
    (void)terminate();
}

int AudioOutput::call(std::function<int()> function, std::function<void(int)> afterwards)
{
    const auto result = soundCalls().run(std::move(function), std::move(afterwards));
    if (result) {
        return *result;
    }
    m_isInitialized = false;
    if (m_stream) {
        m_stream->detach();
        m_stream.reset();
    }
    return paTimedOut;
}

int AudioOutput::initialize()
{
    const int result = call(Pa_Initialize, [](int lateResult) {
        if (lateResult == paNoError) {
            (void)Pa_Terminate();
        }
    });
    m_isInitialized = result == paNoError;
    return result;
}

int AudioOutput::terminate()
{
    if (!m_isInitialized) {
        return paNoError;
    }
    m_isInitialized = false;
    return call(Pa_Terminate, [](int) {});
}

std::optional<OutputDevice> AudioOutput::defaultDevice()
{
    const PaDeviceIndex index = Pa_GetDefaultOutputDevice();
    const PaDeviceInfo* const info = index >= 0 ? Pa_GetDeviceInfo(index) : nullptr;
    if (!info) {
        return std::nullopt;
    }
    return OutputDevice{ index, info->maxOutputChannels, info->defaultLowOutputLatency };
}

int AudioOutput::open(const OutputDevice& device, MediaSource& source)
{
    PaStreamParameters parameters{};
    parameters.device = device.index;
    parameters.channelCount = source.outputChannels;
    parameters.sampleFormat = paInt16;
    parameters.suggestedLatency = device.latency;
    const auto stream = std::make_shared<Stream>(source);
    const auto openStream = [parameters, stream, rate = source.sampleRate] {
        const int result = Pa_OpenStream(&stream->handle, nullptr, &parameters, rate,
            paFramesPerBufferUnspecified, paNoFlag, Stream::callback, stream.get());
        return result == paNoError ? Pa_SetStreamFinishedCallback(stream->handle, Stream::finished)
                                   : result;
    };
    const int result = call(openStream, terminateLate);
    if (result == paNoError) {
        m_stream = stream;
    }
    return result;
}

int AudioOutput::start()
{
    return call([stream = m_stream] { return Pa_StartStream(stream->handle); }, terminateLate);
}

int AudioOutput::close()
{
    if (!m_stream) {
        return paNoError;
    }
    const int result =
        call([stream = m_stream] { return Pa_CloseStream(stream->handle); }, terminateLate);
    m_stream.reset();
    return result;
}
