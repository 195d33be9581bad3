#include "clips.h"
#include "mediamanager.h"
#include "mediasource.h"

#include <QMetaEnum>
#include <QTest>

extern "C" {
#include <libavcodec/packet.h>
}

class TestMediaManager : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_manager = std::make_unique<MediaManager>();
        m_events.clear();
        connect(m_manager.get(), &MediaManager::statusChanged, [this](MediaManager::Status status) {
            m_events << QMetaEnum::fromType<MediaManager::Status>().valueToKey(status);
            if (m_isAbandoned) {
                m_source->abortRequested = true;
            }
        });
        connect(m_manager.get(), &MediaManager::error, [this](MediaManager::Error error) {
            m_events << QMetaEnum::fromType<MediaManager::Error>().valueToKey(error);
        });
        connect(m_manager.get(), &MediaManager::released, [this] { m_events << "released"; });
    }

    void cleanup() { m_manager.reset(); }

    void withoutASourceNothingHappens()
    {
        m_manager->seek();
        m_manager->read();
        m_manager->unload();
        QCOMPARE(takeEvents(), "released");
    }

    // A seek into a file that did not open read from a file that was not there.
    void aFileThatDoesNotOpenIsSaidSoOnceAndNotReadFrom()
    {
        MediaSource& source = newSource("/missing.mp4");
        m_manager->load(&source);
        QCOMPARE(takeEvents(), "Loading NoMedia InvalidMedia OpenError");
        source.seekRequested = true;
        m_manager->seek();
        m_manager->read();
        QCOMPARE(takeEvents(), "");
        m_manager->unload();
        QCOMPARE(takeEvents(), "NoMedia released");
    }

    void anAbandonedFileIsNotReported()
    {
        for (const QString& path : { clip("videoonly.mp4").path, QString("/missing.mp4") }) {
            MediaSource& source = newSource(path);
            m_isAbandoned = true;
            m_manager->load(&source);
            m_isAbandoned = false;
            QCOMPARE(takeEvents(), "Loading NoMedia");
            m_manager->seek();
            m_manager->unload();
            QCOMPARE(takeEvents(), "released");
        }
    }

    void readsToTheEndAndAgainAfterASeek()
    {
        MediaSource& source =
            newSource(clip("videoonly.mp4").path); // whose packets all fit the queue
        m_manager->load(&source);
        QCOMPARE(takeEvents(), "Loading NoMedia Loaded Reading EndOfFile");
        QCOMPARE(source.videoPackets.usedSlots(), 101); // the end marker is in both queues
        QCOMPARE(source.audioPackets.usedSlots(), 1);
        m_manager->seek(); // no seek is requested: it only reads on
        QCOMPARE(takeEvents(), "Reading EndOfFile");
        QCOMPARE(source.videoPackets.usedSlots(), 101);

        source.seekTime = 2.0;
        source.seekRequested = true;
        m_manager->seek();
        QCOMPARE(takeEvents(), "Seeked Reading EndOfFile");
        QVERIFY(!source.seekRequested && source.videoFrames.discarding
            && source.audioFrames.discarding);
        QVERIFY(source.clockTime(false) >= 2.0 && source.clockTime(false) < 2.1);
        QCOMPARE(source.videoPackets.get()->size, PacketQueue::flushSize);
        QVERIFY((source.videoPackets.get()->flags & AV_PKT_FLAG_KEY) != 0);
        QVERIFY(source.videoPackets.usedSlots() < 100); // from a key picture on
        QCOMPARE(source.audioPackets.get()->size, PacketQueue::flushSize);
        QCOMPARE(source.audioPackets.get()->size, PacketQueue::endOfStreamSize);
    }

private:
    QString takeEvents()
    {
        QString events = m_events.join(' ');
        m_events.clear();
        return events;
    }

    MediaSource& newSource(const QString& path)
    {
        m_source = std::make_unique<MediaSource>(path);
        return *m_source;
    }

    std::unique_ptr<MediaSource> m_source; // outlives the manager
    std::unique_ptr<MediaManager> m_manager;
    QStringList m_events;
    bool m_isAbandoned = false; // as soon as a status is reported
};

QTEST_GUILESS_MAIN(TestMediaManager)
#include "tst_mediamanager.moc"
