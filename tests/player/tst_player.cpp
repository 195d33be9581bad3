#include "clips.h"
#include "framecode.h"
#include "playbackmanager.h"
#include "player.h"
#include "rangetimelinewidget.h"
#include "settings.h"
#include "settingsstore.h"
#include "softwareviewer.h"
#include "tcpserver.h"

#include <QtTest>

using Range = QPair<int, int>;

// The window without a screen: what ticks of the clock, statuses and requests at odd times lead to.
class TestPlayer : public QObject {
    Q_OBJECT

    static constexpr int last = 250; // frames of the sample
    std::unique_ptr<Player> m_player;

    template <typename T> [[nodiscard]] T& part() const { return *m_player->findChild<T*>(); }
    [[nodiscard]] PlaybackManager& manager() const { return part<PlaybackManager>(); }
    [[nodiscard]] Range range() const
    {
        const auto& timeline = part<RangeTimelineWidget>();
        return { timeline.rangeStart(), timeline.rangeEnd() };
    }
    // The one frame that title and both timelines agree on; 0 where they do not.
    [[nodiscard]] int frame() const
    {
        const int titled = m_player->windowTitle().section("-- Frame ", 1).toInt();
        for (const TimelineWidget* timeline : m_player->findChildren<TimelineWidget*>()) {
            if (timeline->currentFrame() != titled) {
                return 0;
            }
        }
        return titled;
    }
    [[nodiscard]] bool isPlaying() const { return manager().state() == PlaybackManager::Playing; }
    [[nodiscard]] bool isReady() const { return manager().status() == PlaybackManager::Ready; }
    void open(int start = -1, int end = -1)
    {
        QFile::remove(settingsFilePath());
        loadSettings();
        m_player->open(sampleClipPath(), start, end);
        QTRY_VERIFY_WITH_TIMEOUT(isReady() && frame() > 0, 20000);
    }

private Q_SLOTS:
    void initTestCase() { m_player = std::make_unique<Player>(QString()); }
    void cleanupTestCase() { m_player.reset(); }

    void range_isClampedToTheMedia()
    {
        const std::tuple<int, int, Range> rows[] = { { -1, -1, { 1, last } },
            { 10, 50, { 10, 50 } }, { 60, 50, { 60, 60 } }, { 300, 400, { last, last } } };
        for (const auto& [start, end, expected] : rows) {
            open(start, end);
            QTRY_COMPARE(range(), expected);
            QTRY_COMPARE(frame(), expected.first);
            m_player->resetFrameRange();
            QCOMPARE(range(), Range(1, last));
            m_player->setFrameRange(start, end);
            QCOMPARE(range().second, start < 0 ? 1 : expected.second);
        }
    }

    void seeking_goesOnPlayingWhereWanted()
    {
        open();
        m_player->playForward();
        QTRY_VERIFY(frame() > 3);
        m_player->setCurrentFrame(150); // outside the cache or not: it goes on
        QTRY_VERIFY(isPlaying() && frame() > 152);
        settings().continuePlayingAfterSeek = false;
        m_player->setCurrentFrame(30);
        QTRY_VERIFY(isReady() && frame() == 30);
        QVERIFY(!isPlaying());
        settings().continuePlayingAfterSeek = true;
        m_player->setCurrentFrame(200, false, true);
        QCOMPARE(manager().status(), PlaybackManager::Seeking);
        m_player->playForward(); // not lost while the seek runs
        QTRY_VERIFY(isPlaying() && frame() > 200);
        m_player->setCurrentFrame(60, false, true);
        QCOMPARE(manager().status(), PlaybackManager::Seeking);
        m_player->pause();
        QTRY_VERIFY(isReady() && frame() == 60);
        QVERIFY(!isPlaying());
    }

    void remoteRequests_waitForTheFile()
    {
        open();
        m_player->open(clip("mpeg4.avi").path, 5, 9);
        auto& remote = part<TcpServer>();
        Q_EMIT remote.frameChanged(3);
        Q_EMIT remote.frameChangedRelative(4);
        Q_EMIT remote.rangeEndChanged(70);
        Q_EMIT remote.rangeStartChanged(30);
        Q_EMIT remote.rangeStartChanged(20);
        QTRY_COMPARE(range(), Range(20, 70));
        QTRY_VERIFY(isReady() && frame() == 23);
    }

    void playing_beginsWithTheFrameAskedFor()
    {
        open();
        m_player->open(clip("longgop.mp4").path);
        QTRY_COMPARE(manager().mediaFilename(), clip("longgop.mp4").path);
        QTRY_VERIFY(isReady() && frame() == 1);
        m_player->playForward();
        QTRY_VERIFY(isPlaying());
        QVector<QPair<int, int>> titledAndShown;
        connect(&manager(), &PlaybackManager::playbackTimeChanged, this, [&] {
            if (isPlaying()) {
                const QImage picture = part<SoftwareViewer>().pixmap().toImage();
                titledAndShown.append(
                    { frame(), framecode::read(picture.convertToFormat(QImage::Format_RGB888)) });
            }
        });
        m_player->setRangeEnd(150);
        m_player->setCurrentFrame(140, false, true);
        QTRY_VERIFY(isReady() && !isPlaying() && frame() == 150);
        manager().disconnect(this);
        for (const auto& [titled, shown] : qAsConst(titledAndShown)) {
            QCOMPARE(shown, titled);
        }
        QVERIFY(titledAndShown.contains({ 140, 140 }));
    }

    void stop_keepsTheWindowForTheNextLaunch()
    {
        open();
        m_player->stop();
        QVERIFY(!m_player->isVisible());
        QTRY_COMPARE(manager().status(), PlaybackManager::NoMedia);
        m_player->receiveMessageFromOtherInstance({ "noargs" });
        QVERIFY(m_player->isVisible());
        m_player->receiveMessageFromOtherInstance({ sampleClipPath(), "12", "14" });
        QTRY_COMPARE(range(), Range(12, 14));
    }

    void closing_waitsForTheFile()
    {
        open();
        QSignalSpy closed(m_player.get(), &Player::closed);
        QVERIFY(!m_player->close());
        m_player->open(clip("mpeg4.avi").path); // too late
        QTRY_COMPARE(closed.count(), 1);
        QVERIFY(manager().mediaFilename().isEmpty());
    }
};

QTEST_MAIN(TestPlayer)
#include "tst_player.moc"
