#pragma once

#include <cstdint>
#include <optional>

class MediaSource;

// Sound output through PortAudio. Results are PortAudio's own numbers: 0 is success, failures are
// negative.

/// PortAudio from initialize() to terminate(); the destructor terminates what was left. Audio
/// thread.
class PaLibrary {
public:
    PaLibrary() = default;
    ~PaLibrary();
    PaLibrary(const PaLibrary&) = delete;
    PaLibrary& operator=(const PaLibrary&) = delete;

    [[nodiscard]] int initialize();
    [[nodiscard]] int terminate();
    [[nodiscard]] bool isInitialized() const { return m_initialized; }

private:
    bool m_initialized = false;
};

struct OutputDevice {
    int index;
    int maxChannels;
    double latency; // seconds, the shortest that the device suggests
};

/// The system's default device, none where there is no output. PortAudio is initialized.
std::optional<OutputDevice> defaultOutputDevice();

/// One output stream; it must go before the PaLibrary under which it was opened. Audio thread.
class PaStreamPtr {
public:
    PaStreamPtr() = default;
    ~PaStreamPtr();
    PaStreamPtr(const PaStreamPtr&) = delete;
    PaStreamPtr& operator=(const PaStreamPtr&) = delete;

    /// A stream of the source's rate and outputChannels. From start() to close() its callback reads
    /// the source.
    [[nodiscard]] int open(const OutputDevice& device, MediaSource& source);
    [[nodiscard]] int start();
    [[nodiscard]] int close(); // stops a running stream; 0 where none is open
    [[nodiscard]] explicit operator bool() const { return m_stream != nullptr; }

private:
    void* m_stream = nullptr;
};

/// Audio callback: no allocation, no lock but the sound buffer's, no signal. Writes `frameCount`
/// sample frames: at speed 1.0 the sound at the clock, else the scrub slice that was asked for,
/// else silence.
void fillOutput(MediaSource& source, int16_t* out, int frameCount);
