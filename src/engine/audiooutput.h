#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

class MediaSource;

// Sound output through PortAudio. Results are PortAudio's own numbers: 0 is success, failures are
// negative.

struct OutputDevice {
    int index;
    int maxChannels;
    double latency; // seconds, the shortest that the device suggests
};

/// PortAudio from initialize() to terminate(), with at most one output stream, which ends before.
/// The destructor ends what was left. Audio thread.
///
/// A sound server that does not answer holds up any of these calls, some for good. What takes
/// longer than 4 s is given up with paTimedOut: nothing is initialized then, no stream is open, and
/// initialize() fails in the same way until the call has come back after all.
class AudioOutput {
public:
    AudioOutput() = default;
    ~AudioOutput();
    AudioOutput(const AudioOutput&) = delete;
    AudioOutput& operator=(const AudioOutput&) = delete;

    [[nodiscard]] int initialize();
    [[nodiscard]] int terminate();
    [[nodiscard]] bool isInitialized() const { return m_isInitialized; }

    /// The system's default device, none where there is no output. After initialize().
    [[nodiscard]] static std::optional<OutputDevice> defaultDevice();

    /// A stream of the source's rate and outputChannels. From start() to close() its callback reads
    /// the source.
    [[nodiscard]] int open(const OutputDevice& device, MediaSource& source);
    [[nodiscard]] int start();
    [[nodiscard]] int close(); // stops a running stream; 0 where none is open
    [[nodiscard]] bool isOpen() const { return m_stream != nullptr; }

private:
    struct Stream;

    int call(std::function<int()> function, std::function<void(int)> afterwards);

    std::shared_ptr<Stream> m_stream;
    bool m_isInitialized = false;
};

/// Audio callback: no allocation, no lock but the stream's and the sound buffer's, no signal.
/// Writes `frameCount` sample frames: at speed 1.0 the sound at the clock, else the scrub slice
/// that was asked for, else silence.
void fillOutput(MediaSource& source, int16_t* out, int frameCount);
