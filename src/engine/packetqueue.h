#pragma once

#include "avhandles.h"

#include <QMutex>
#include <QSemaphore>

#include <cstdint>
#include <deque>

/// Bounded first-in first-out queue of compressed packets between the demuxer (the only producer)
/// and one decoder (the only consumer). Beside packets it carries two markers, which the consumer
/// knows by their size alone. Every function may be called from any thread; the lock is taken
/// inside.
class PacketQueue {
public:
    static constexpr int capacity = 200; // packets
    static constexpr int endOfStreamSize = -9; // the file has ended: drain the decoder
    static constexpr int flushSize = -99; // a seek happened: flush the decoder

    PacketQueue();
    ~PacketQueue();

    /// Tries once to append. True: the queue has taken the packet (or dropped it, where its data
    /// could not be made its own). False after about 2 ms: the queue was full and the caller still
    /// owns the packet.
    [[nodiscard]] bool put(AvPtr<AVPacket>& packet);

    /// The oldest packet, or null after 1 ms where the queue was empty.
    [[nodiscard]] AvPtr<AVPacket> get();

    /// True when a put would not be refused. Only the producer can rely on it: nobody else takes
    /// room away. It never waits, so that a producer with a full queue does not hold the lock
    /// against the consumer.
    [[nodiscard]] bool hasRoom();

    [[nodiscard]] bool isEmpty();
    void clear();
    [[nodiscard]] bool putEndOfStream();

    /// Empties the queue and leaves the flush marker as its only entry. `serial` travels in the
    /// marker's pts and tells the decoder which seek it belongs to.
    bool flush(int64_t serial = 0);

    [[nodiscard]] int freeSlots() const { return m_freeSlots.available(); }
    [[nodiscard]] int usedSlots() const { return m_usedSlots.available(); }

private:
    bool append(AvPtr<AVPacket>& packet);

    QMutex m_mutex; // guards everything below; the semaphores change only while it is held
    std::deque<AvPtr<AVPacket>> m_packets;
    QSemaphore m_freeSlots;
    QSemaphore m_usedSlots;
    int64_t m_byteCount = 0; // sum of the size fields, the markers' negative ones included
};
