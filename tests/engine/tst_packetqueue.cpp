#include "packetqueue.h"

#include <QTest>

extern "C" {
#include <libavcodec/packet.h>
}

namespace {

uint8_t borrowed[8]; // the queue must make the data its own

AvPtr<AVPacket> numbered(int number)
{
    AvPtr<AVPacket> packet = makePacket();
    packet->data = borrowed;
    packet->size = sizeof borrowed;
    packet->pts = number;
    return packet;
}

void fill(PacketQueue& queue)
{
    for (int i = 0; i < PacketQueue::capacity; ++i) {
        AvPtr<AVPacket> packet = numbered(i);
        QVERIFY(queue.put(packet) && !packet);
    }
    QVERIFY(queue.freeSlots() == 0 && queue.usedSlots() == PacketQueue::capacity);
}

} // namespace

class TestPacketQueue : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void put_refusesThe201stPacketAndLeavesItWithTheCaller()
    {
        PacketQueue queue;
        fill(queue);
        AvPtr<AVPacket> late = numbered(200);
        QVERIFY(!queue.hasRoom() && !queue.put(late) && !queue.putEndOfStream());
        QVERIFY(late && late->pts == 200 && late->size == sizeof borrowed);
        const AvPtr<AVPacket> first = queue.get();
        QVERIFY(first->pts == 0 && first->buf && first->data != borrowed);
        QVERIFY(queue.hasRoom() && queue.put(late) && !late);
    }

    void flush_leavesItsMarkerAloneAndNoPlaceIsLost()
    {
        PacketQueue queue;
        fill(queue);
        QVERIFY(queue.flush(77) && queue.putEndOfStream());
        QVERIFY(queue.usedSlots() == 2 && queue.freeSlots() == 198);
        const AvPtr<AVPacket> flush = queue.get();
        QVERIFY(flush->size == PacketQueue::flushSize && flush->pts == 77);
        QCOMPARE(queue.get()->size, PacketQueue::endOfStreamSize);
        QVERIFY(!queue.get() && queue.isEmpty() && queue.freeSlots() == 200);
        fill(queue);
        queue.clear();
        QVERIFY(queue.isEmpty() && queue.usedSlots() == 0 && queue.freeSlots() == 200);
        fill(queue);
    }
};

QTEST_GUILESS_MAIN(TestPacketQueue)
#include "tst_packetqueue.moc"
