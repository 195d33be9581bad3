#include "audiooutput.h"

#include "logger.h"
#include "mediasource.h"
#include "scrubslice.h"

#include <portaudio.h>

#include <algorithm>

namespace {

constexpr double audibleSpeed = 1.0; // sound is played at this speed alone

int streamCallback(const void*, void* output, unsigned long frameCount,
    const PaStreamCallbackTimeInfo*, PaStreamCallbackFlags, void* source)
{
    fillOutput(*static_cast<MediaSource*>(source), static_cast<int16_t*>(output),
        static_cast<int>(frameCount));
    return paContinue;
}

// On a thread of the library's, also where the stream is closed in order.
void streamFinished(void* source)
{
    if (!static_cast<MediaSource*>(source)->abortRequested) {
        Logger::displayWarning(QStringLiteral("Sound output: the device has gone"));
    }
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

PaLibrary::~PaLibrary()
{
    (void)terminate();
}

int PaLibrary::initialize()
{
    const int result = Pa_Initialize();
    m_initialized = result == paNoError;
    return result;
}

int PaLibrary::terminate()
{
    if (!m_initialized) {
        return paNoError;
    }
    m_initialized = false;
    return Pa_Terminate();
}

std::optional<OutputDevice> defaultOutputDevice()
{
    const PaDeviceIndex index = Pa_GetDefaultOutputDevice();
    const PaDeviceInfo* const info = index >= 0 ? Pa_GetDeviceInfo(index) : nullptr;
    if (!info) {
        return std::nullopt;
    }
    return OutputDevice{ index, info->maxOutputChannels, info->defaultLowOutputLatency };
}

PaStreamPtr::~PaStreamPtr()
{
    (void)close();
}

int PaStreamPtr::open(const OutputDevice& device, MediaSource& source)
{
    PaStreamParameters output{};
    output.device = device.index;
    output.channelCount = source.outputChannels;
    output.sampleFormat = paInt16;
    output.suggestedLatency = device.latency;
    const int result = Pa_OpenStream(&m_stream, nullptr, &output, source.sampleRate,
        paFramesPerBufferUnspecified, paNoFlag, streamCallback, &source);
    if (result != paNoError) {
        m_stream = nullptr;
        return result;
    }
    return Pa_SetStreamFinishedCallback(m_stream, streamFinished);
}

int PaStreamPtr::start()
{
    return Pa_StartStream(m_stream);
}

int PaStreamPtr::close()
{
    if (!m_stream) {
        return paNoError;
    }
    void* const stream = m_stream;
    m_stream = nullptr;
    return Pa_CloseStream(stream);
}
