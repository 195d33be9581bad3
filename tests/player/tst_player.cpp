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
using Command = std::function<void(Player&)>;
Q_DECLARE_METATYPE(Command)
Q_DECLARE_METATYPE(Settings)

// The window without a screen: what commands, ticks of the clock and statuses lead to.
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
    void open(int start = -1, int end = -1, const Settings& with = defaults())
    {
        settings() = with;
        m_player->open(sampleClipPath(), start, end);
        QTRY_VERIFY_WITH_TIMEOUT(isReady() && frame() > 0, 20000);
    }
    static Settings defaults()
    {
        QFile::remove(settingsFilePath());
        loadSettings();
        return settings();
    }
    static Settings with(bool Settings::*option, bool value = true)
    {
        Settings values = defaults();
        values.*option = value;
        return values;
    }

private Q_SLOTS:
    void initTestCase() { m_player = std::make_unique<Player>(QString()); }
    void cleanupTestCase() { m_player.reset(); }

    void range_isClampedToTheMedia_data()
    {
        QTest::addColumn<int>("start");
        QTest::addColumn<int>("end");
        QTest::addColumn<Range>("expected");
        QTest::newRow("none") << -1 << -1 << Range(1, last);
        QTest::newRow("start only") << 10 << -1 << Range(10, 10);
        QTest::newRow("end only") << -1 << 50 << Range(1, 50);
        QTest::newRow("both") << 10 << 50 << Range(10, 50);
        QTest::newRow("end before start") << 60 << 50 << Range(60, 60);
        QTest::newRow("beyond the media") << 300 << 400 << Range(last, last);
    }

    void range_isClampedToTheMedia()
    {
        QFETCH(int, start);
        QFETCH(int, end);
        QFETCH(Range, expected);
        open(start, end);
        QTRY_COMPARE(range(), expected);
        QTRY_COMPARE(frame(), expected.first);
        m_player->resetFrameRange();
        QCOMPARE(range(), Range(1, last));
        m_player->setFrameRange(start, end);
        QCOMPARE(range().second, start < 0 && end < 0 ? 1 : expected.second);
    }

    void command_leadsToAFrame_data()
    {
        QTest::addColumn<Settings>("values");
        QTest::addColumn<int>("from");
        QTest::addColumn<Command>("command");
        QTest::addColumn<int>("expected");
        const Settings plain = defaults();
        const Settings looped = with(&Settings::loopOnStep);
        const Command forward = [](Player& player) { player.stepForward(); };
        const Command backward = [](Player& player) { player.stepBackward(); };
        QTest::newRow("step past the range") << plain << 50 << forward << 51;
        QTest::newRow("step past the range, looping") << looped << 50 << forward << 10;
        QTest::newRow("step outside the range, looping") << looped << 60 << forward << 10;
        QTest::newRow("step into the range, looping") << looped << 9 << forward << 10;
        QTest::newRow("step back before the range") << plain << 10 << backward << 9;
        QTest::newRow("step back, looping") << looped << 10 << backward << 50;
        QTest::newRow("step back into the range, looping") << looped << 51 << backward << 50;
        QTest::newRow("step at the end") << plain << last << forward << last;
        QTest::newRow("step at the start") << plain << 1 << backward << 1;
        const auto to = [](void (Player::*slot)()) -> Command {
            return [slot](Player& player) { (player.*slot)(); };
        };
        QTest::newRow("start") << plain << 30 << to(&Player::seekStart) << 1;
        QTest::newRow("end") << plain << 30 << to(&Player::seekEnd) << last;
        QTest::newRow("range start") << plain << 30 << to(&Player::seekRangeStart) << 10;
        QTest::newRow("range end") << plain << 30 << to(&Player::seekRangeEnd) << 50;
        QTest::newRow("cache anew") << plain << 30 << to(&Player::cacheFromCurrent) << 30;
        const auto goTo = [](int frame) -> Command {
            return [frame](Player& player) { player.setCurrentFrame(frame); };
        };
        QTest::newRow("below the media") << plain << 30 << goTo(INT_MIN) << 1;
        QTest::newRow("above the media") << plain << 30 << goTo(INT_MAX) << last;
        QTest::newRow("relative") << plain << 30
                                  << Command([](Player& p) { p.setCurrentFrameRelative(3); }) << 12;
    }

    void command_leadsToAFrame()
    {
        QFETCH(Settings, values);
        QFETCH(int, from);
        QFETCH(Command, command);
        QFETCH(int, expected);
        open(10, 50, values);
        m_player->setCurrentFrame(from);
        QTRY_VERIFY(isReady() && frame() == from);
        command(*m_player);
        QTRY_VERIFY2(isReady() && frame() == expected, qPrintable(m_player->windowTitle()));
        QVERIFY(!isPlaying());
    }

    void playing_staysInTheRange_data()
    {
        QTest::addColumn<bool>("loop");
        QTest::addColumn<Range>("range");
        QTest::newRow("stops at the end of the range") << false << Range(40, 50);
        QTest::newRow("loops in the range") << true << Range(40, 50);
        QTest::newRow("stops at the end of the media") << false << Range(240, last);
        QTest::newRow("loops from the end of the media") << true << Range(240, last);
    }

    void playing_staysInTheRange()
    {
        QFETCH(bool, loop);
        QFETCH(Range, range);
        open(range.first, range.second, with(&Settings::loop, loop));
        QTRY_VERIFY(isReady() && frame() == range.first);
        QVector<int> shown;
        const auto times = [&](int frame) { return shown.count(frame); };
        connect(m_player.get(), &QWidget::windowTitleChanged, this,
            [&](const QString& title) { shown.append(title.section("-- Frame ", 1).toInt()); });
        m_player->playForward();
        QTRY_COMPARE(times(range.second), 1);
        if (!loop) {
            QTRY_VERIFY(!isPlaying());
            QCOMPARE(frame(), range.second);
            m_player->playForward(); // from the end: the range anew
        }
        QTRY_COMPARE(times(range.second), 2);
        m_player->pause();
        m_player->disconnect(this);
        QCOMPARE(*std::min_element(shown.begin(), shown.end()), range.first);
        QCOMPARE(*std::max_element(shown.begin(), shown.end()), range.second);
    }

    void autoplay_startsOnceWithARange()
    {
        Settings values = with(&Settings::autoplay);
        values.continuePlayingAfterSeek = false;
        open(20, 240, values);
        QTRY_VERIFY(isPlaying());
        QTRY_VERIFY(frame() > 25);
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

    void opening_losesNothingForAMissingFile()
    {
        open();
        m_player->setCurrentFrame(70);
        QTRY_VERIFY(isReady() && frame() == 70);
        m_player->open("/no/such/file.mp4");
        QVERIFY(isReady());
        QCOMPARE(frame(), 70);
        m_player->open(clip("mpeg4.avi").path, 5, 9);
        QTRY_COMPARE(range(), Range(5, 9));
        QTRY_VERIFY(isReady() && frame() == 5);
        QCOMPARE(settings().recentFiles, (QStringList{ clip("mpeg4.avi").path, sampleClipPath() }));
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
        settings().volume = 42;
        QSignalSpy closed(m_player.get(), &Player::closed);
        QVERIFY(!m_player->close());
        m_player->open(clip("mpeg4.avi").path); // too late
        QTRY_COMPARE(closed.count(), 1);
        QVERIFY(manager().mediaFilename().isEmpty());
        loadSettings();
        QCOMPARE(settings().volume, 42);
        QCOMPARE(settings().recentFiles, QStringList{ sampleClipPath() });
        QVERIFY(!settings().windowGeometry.isEmpty());
    }
};

QTEST_MAIN(TestPlayer)
#include "tst_player.moc"
