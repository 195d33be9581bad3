#include "playbackclock.h"

#include <QTest>

namespace {
int64_t now = 0; // microseconds
constexpr double microsecond = 1.001e-6; // seconds; stamps are whole microseconds
}

class TestPlaybackClock : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void runsFromWhereItWasSetAtItsSpeed_data()
    {
        QTest::addColumn<double>("start"); // seconds
        QTest::addColumn<double>("speed");
        QTest::addColumn<int>("wallMs");
        QTest::addColumn<double>("expected");
        QTest::newRow("from zero") << 0.0 << 1.0 << 1500 << 1.5;
        QTest::newRow("half speed") << 3.0 << 0.5 << 1000 << 3.5;
        QTest::newRow("four times") << 100.0 << 4.0 << 250 << 101.0;
        QTest::newRow("negative time counts as zero") << -5.0 << 1.0 << 20 << 0.02;
        QTest::newRow("hours at a tenth") << 10800.0 << 0.1 << 70 << 10800.007;
    }
    void runsFromWhereItWasSetAtItsSpeed()
    {
        QFETCH(const double, start);
        QFETCH(const double, speed);
        QFETCH(const int, wallMs);
        QFETCH(const double, expected);
        now = 987654321;
        PlaybackClock clock([] { return now; });
        clock.speed = speed;
        clock.reset(start);
        now += int64_t{ 1000 } * wallMs;
        QVERIFY(std::abs(clock.time() - std::max(start, 0.0)) < microsecond); // moves when told to
        QCOMPARE(clock.update(), int64_t{ 1000 } * wallMs);
        QVERIFY(std::abs(clock.time() - expected) < microsecond);
        clock.speed = 0.5; // counts from here on
        now += 1000000;
        QVERIFY(std::abs(clock.updatedTime() - expected - 0.5) < microsecond);
    }
};

QTEST_APPLESS_MAIN(TestPlaybackClock)
#include "tst_playbackclock.moc"
