#include "packetqueue.h"

#include "scopedlock.h"

#include <QThread>

extern "C" {
#include <libavcodec/packet.h>
}

namespace {

constexpr int freeSlotWaitMs = 1;
constexpr unsigned long refusedPauseMs = 1; // paces the producer's retries
constexpr unsigned long emptyPauseMs = 1; // paces the consumer's polling

bool isMarker(const AVPacket& packet)
{
    return packet.size < 0;
}

AvPtr<AVPacket> makeMarker(int size, int64_t serial = 0)
{
    AvPtr<AVPacket> marker = makePacket();
    if (marker) {
        marker->size = size;
        marker->pts = serial;
    }
    return marker;
}

} // namespace

PacketQueue::PacketQueue()
{
    m_freeSlots.release(capacity);
}

PacketQueue::~PacketQueue()
{
    clear();
}

bool PacketQueue::put(AvPtr<AVPacket>& packet)
{
    if (!packet) {
        return true;
    }
    // A marker has no data; the call that makes a packet own its data refuses a negative size.
    if (!isMarker(*packet) && av_packet_make_refcounted(packet.get()) < 0) {
        packet.reset();
        return true;
    }
    const ScopedLock lock(m_mutex);
    if (append(packet)) {
        return true;
    }
    // Under the lock on purpose: the consumer cannot take a packet in this millisecond, which paces
    // the producer.
    QThread::msleep(refusedPauseMs);
    return false;
}

bool PacketQueue::append(AvPtr<AVPacket>& packet)
{
    if (!m_freeSlots.tryAcquire(1, freeSlotWaitMs)) {
        return false;
    }
    m_byteCount += packet->size;
    m_packets.push_back(std::move(packet));
    m_usedSlots.release(1);
    return true;
}

AvPtr<AVPacket> PacketQueue::get()
{
    {
        const ScopedLock lock(m_mutex);
        if (!m_packets.empty()) {
            m_usedSlots.acquire(1);
            AvPtr<AVPacket> packet = std::move(m_packets.front());
            m_packets.pop_front();
            m_byteCount -= packet->size;
            m_freeSlots.release(1);
            return packet;
        }
    }
    QThread::msleep(emptyPauseMs);
    return nullptr;
}

bool PacketQueue::hasRoom()
{
    const ScopedLock lock(m_mutex);
    return m_freeSlots.available() > 0;
}

bool PacketQueue::isEmpty()
{
    const ScopedLock lock(m_mutex);
    return m_packets.empty();
}

void PacketQueue::clear()
{
    const ScopedLock lock(m_mutex);
    m_packets.clear();
    const int used = m_usedSlots.available();
    m_freeSlots.release(used);
    m_usedSlots.acquire(used);
    m_byteCount = 0;
}

bool PacketQueue::putEndOfStream()
{
    AvPtr<AVPacket> marker = makeMarker(endOfStreamSize);
    return put(marker);
}

bool PacketQueue::flush(int64_t serial)
{
    clear();
    AvPtr<AVPacket> marker = makeMarker(flushSize, serial);
    return put(marker);
}
