#include "clips.h"
#include "mediamanager.h"
#include "mediasource.h"

#include <QMetaEnum>
#include <QTest>

extern "C" {
#include <libavcodec/packet.h>
}

namespace {

struct Watched {
    /// With `abandoned` the file is given up as soon as a status is reported.
    explicit Watched(const QString& path, bool abandoned = false)
        : source(path)
    {
        QObject::connect(
            &manager, &MediaManager::statusChanged, [this, abandoned](MediaManager::Status status) {
                told << QMetaEnum::fromType<MediaManager::Status>().valueToKey(status);
                source.abortRequested = abandoned;
            });
        QObject::connect(&manager, &MediaManager::error, [this](MediaManager::Error error) {
            told << QMetaEnum::fromType<MediaManager::Error>().valueToKey(error);
        });
        QObject::connect(&manager, &MediaManager::released, [this] { told << "released"; });
    }

    QString events()
    {
        const QStringList taken = std::exchange(told, {});
        return taken.join(' ');
    }

    MediaSource source;
    QStringList told;
    MediaManager manager; // which tells of its end, too
};

} // namespace

class TestMediaManager : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // A seek into a file that did not open read from a file that was not there.
    void aFileThatDoesNotOpenIsSaidSoOnceAndNotReadFrom()
    {
        Watched watched("/missing.mp4");
        MediaManager& manager = watched.manager;
        manager.seek(); // without any file
        manager.read();
        manager.load(&watched.source);
        QCOMPARE(watched.events(), "Loading NoMedia InvalidMedia OpenError");
        watched.source.seekRequested = true;
        manager.seek();
        manager.read();
        QCOMPARE(watched.events(), "");
        manager.unload();
        QCOMPARE(watched.events(), "NoMedia released");
    }

    void anAbandonedFileIsNotReported()
    {
        for (const QString& path : { clip("videoonly.mp4").path, QString("/missing.mp4") }) {
            Watched watched(path, true);
            watched.manager.load(&watched.source);
            watched.manager.seek();
            watched.manager.unload();
            QCOMPARE(watched.events(), "Loading NoMedia released");
        }
    }

    void readsToTheEndAndAgainAfterASeek()
    {
        Watched watched(clip("videoonly.mp4").path); // whose packets all fit the queue
        MediaSource& source = watched.source;
        watched.manager.load(&source);
        QCOMPARE(watched.events(), "Loading NoMedia Loaded Reading EndOfFile");
        watched.manager.seek(); // no seek is requested: it only reads on
        QCOMPARE(watched.events(), "Reading EndOfFile");
        QCOMPARE(source.videoPackets.usedSlots(), 101); // one end marker is in both queues
        QCOMPARE(source.audioPackets.usedSlots(), 1);

        source.seekTime = 2.0;
        source.seekRequested = true;
        watched.manager.seek();
        QCOMPARE(watched.events(), "Seeked Reading EndOfFile");
        QVERIFY(!source.seekRequested && source.videoFrames.discarding
            && source.audioFrames.discarding);
        QVERIFY(source.clockTime(false) >= 2.0 && source.clockTime(false) < 2.1);
        QCOMPARE(source.videoPackets.get()->size, PacketQueue::flushSize);
        QVERIFY((source.videoPackets.get()->flags & AV_PKT_FLAG_KEY) != 0);
        QVERIFY(source.videoPackets.usedSlots() < 100); // from a key picture on
        QCOMPARE(source.audioPackets.get()->size, PacketQueue::flushSize);
        QCOMPARE(source.audioPackets.get()->size, PacketQueue::endOfStreamSize);
    }
};

QTEST_GUILESS_MAIN(TestMediaManager)
#include "tst_mediamanager.moc"
