#include "packetqueue.h"

#include <QTest>

extern "C" {
#include <libavcodec/packet.h>
}

#include <functional>

using Change = std::function<void(PacketQueue&)>;
Q_DECLARE_METATYPE(Change)

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

    void changesOfAFullQueue_data()
    {
        QTest::addColumn<Change>("change");
        QTest::addColumn<int>("used");
        QTest::addColumn<int>("firstSize"); // 0: nothing is queued
        QTest::addColumn<qint64>("firstPts");
        const auto row = [](const char* name, const Change& change, int used, int size, int pts) {
            QTest::newRow(name) << change << used << size << qint64(pts);
        };
        const auto takeOne = [](PacketQueue& queue) { (void)queue.get(); };
        const auto flush = [](PacketQueue& queue) { QVERIFY(queue.flush(77)); };
        const auto end = [](PacketQueue& queue) {
            queue.clear();
            QVERIFY(queue.putEndOfStream());
        };
        row("one taken", takeOne, 199, sizeof borrowed, 1);
        row("cleared", &PacketQueue::clear, 0, 0, 0);
        row("flushed", flush, 1, PacketQueue::flushSize, 77);
        row("cleared, then ended", end, 1, PacketQueue::endOfStreamSize, 0);
    }
    void changesOfAFullQueue()
    {
        QFETCH(const Change, change);
        QFETCH(const int, used);
        PacketQueue queue;
        fill(queue);
        change(queue);
        QCOMPARE(queue.usedSlots(), used);
        QCOMPARE(queue.freeSlots(), PacketQueue::capacity - used);
        QCOMPARE(queue.isEmpty(), used == 0);
        const AvPtr<AVPacket> first = queue.get();
        QTEST(first ? first->size : 0, "firstSize");
        QTEST(first ? qint64(first->pts) : qint64(0), "firstPts");
        QCOMPARE(queue.usedSlots(), std::max(used - 1, 0));
        queue.clear();
        fill(queue); // no place was lost
    }
};

QTEST_GUILESS_MAIN(TestPacketQueue)
#include "tst_packetqueue.moc"
