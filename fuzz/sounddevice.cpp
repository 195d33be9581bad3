// A sound device that every machine has: it stands in the place of PortAudio's library and asks for
// sound until it is closed. Of the library's functions these are the ones that the player calls.
#include <portaudio.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <thread>
#include <vector>

namespace {

constexpr int mostChannels = 2;
constexpr double highestRate = 384000.0; // Hz
constexpr double unstartableRate = 11025.0; // Hz; opening succeeds at it, but starting fails
constexpr unsigned long blockFrames = 480;
constexpr std::chrono::milliseconds blockPause(1);

struct Stream {
    PaStreamCallback* fill;
    void* user;
    bool starts = true;
    std::vector<int16_t> block; // of this very size, so that a write behind it is seen
    std::atomic<bool> running{ false };
    std::thread thread;

    void run()
    {
        while (running) {
            fill(nullptr, block.data(), blockFrames, nullptr, 0, user);
            std::this_thread::sleep_for(blockPause);
        }
    }
};

std::unique_ptr<Stream> openStream; // the player opens one at a time

} // namespace

PaError Pa_Initialize()
{
    return paNoError;
}

PaError Pa_Terminate()
{
    return paNoError;
}

PaDeviceIndex Pa_GetDefaultOutputDevice()
{
    return 0;
}

const PaDeviceInfo* Pa_GetDeviceInfo(PaDeviceIndex)
{
    static const PaDeviceInfo info{ 2, "fuzz", 0, 0, mostChannels, 0.0, 0.01, 0.0, 0.1, 48000.0 };
    return &info;
}

const char* Pa_GetErrorText(PaError)
{
    return "of the fuzzer's device";
}

PaError Pa_OpenStream(PaStream** stream, const PaStreamParameters*,
    const PaStreamParameters* output, double rate, unsigned long, PaStreamFlags,
    PaStreamCallback* fill, void* user)
{
    if (output->channelCount < 1 || output->channelCount > mostChannels) {
        return paInvalidChannelCount;
    }
    if (rate < 1.0 || rate > highestRate) {
        return paInvalidSampleRate;
    }
    openStream = std::make_unique<Stream>();
    openStream->fill = fill;
    openStream->user = user;
    openStream->starts = rate != unstartableRate;
    openStream->block.resize(blockFrames * static_cast<size_t>(output->channelCount));
    *stream = openStream.get();
    return paNoError;
}

PaError Pa_StartStream(PaStream*)
{
    if (!openStream->starts) {
        return paUnanticipatedHostError;
    }
    openStream->running = true;
    openStream->thread = std::thread([] { openStream->run(); });
    return paNoError;
}

PaError Pa_CloseStream(PaStream*)
{
    openStream->running = false;
    if (openStream->thread.joinable()) {
        openStream->thread.join();
    }
    openStream.reset();
    return paNoError;
}
