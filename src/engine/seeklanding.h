#pragma once

#include <atomic>
#include <cstdint>

/// Where a seek went, judged by the first picture that comes out of the decoder after it. An index
/// seek compares decode times, so it can land on a key picture that is shown after the target; the
/// picture asked for would then never be decoded. The demuxer asks, the video decoder answers, and
/// each question is answered at most once.
class SeekLanding {
public:
    enum class Verdict : uint8_t {
        None, // nobody asks
        Pending, // asked, no picture met yet
        Landed, // the first picture starts at or before the target
        Late, // it starts after the target
        Ended // the file ended without a picture
    };

    /// Demuxer. Asks about a seek to `target` seconds; the serial returned travels in the flush
    /// marker.
    int64_t ask(double target)
    {
        m_target.store(target, std::memory_order_relaxed);
        const int64_t serial = (m_state.load(std::memory_order_relaxed) >> verdictBits) + 1;
        m_state.store(pack(serial, Verdict::Pending));
        return serial;
    }

    /// Demuxer. Takes the question back, unless it was answered meanwhile; returns what stands
    /// then.
    Verdict withdraw()
    {
        int64_t pending = m_state.load(std::memory_order_relaxed);
        if (verdictOf(pending) == Verdict::Pending) {
            const int64_t none = pack(pending >> verdictBits, Verdict::None);
            if (m_state.compare_exchange_strong(pending, none, std::memory_order_acq_rel)) {
                return Verdict::None;
            }
        }
        return verdictOf(pending);
    }

    /// Any thread. The number of the newest question, 0 before the first.
    [[nodiscard]] int64_t serial() const { return m_state.load() >> verdictBits; }

    [[nodiscard]] Verdict verdict() const
    {
        return verdictOf(m_state.load(std::memory_order_acquire));
    }

    /// Video decoder. True while the question with this serial waits for its answer.
    [[nodiscard]] bool isAsked(int64_t serial) const
    {
        return m_state.load(std::memory_order_acquire) == pack(serial, Verdict::Pending);
    }
    [[nodiscard]] double target() const { return m_target.load(std::memory_order_relaxed); }

    /// Video decoder. False where the question was taken back or another one stands: the answer
    /// does not count.
    bool answer(int64_t serial, Verdict verdict)
    {
        int64_t pending = pack(serial, Verdict::Pending);
        return m_state.compare_exchange_strong(
            pending, pack(serial, verdict), std::memory_order_acq_rel);
    }

private:
    static constexpr int verdictBits = 3;
    static int64_t pack(int64_t serial, Verdict verdict)
    {
        return serial << verdictBits | static_cast<int64_t>(verdict);
    }
    static Verdict verdictOf(int64_t state)
    {
        return static_cast<Verdict>(state & ((1 << verdictBits) - 1));
    }

    std::atomic<int64_t> m_state{ 0 }; // serial and verdict as one
    std::atomic<double> m_target{ 0.0 }; // seconds
};
