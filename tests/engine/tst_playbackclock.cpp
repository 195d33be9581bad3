#include "playbackclock.h"

#include <QTest>

namespace {
int64_t now = 987654321; // microseconds
constexpr double microsecond = 1.001e-6; // seconds; stamps are whole microseconds
}

class TestPlaybackClock : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void runsFromWhereItWasSetAtItsSpeed()
    {
        const std::tuple<double, double, double> rows[] = { { 3.0, 0.5, 3.5 }, { -5.0, 1.0, 1.0 },
            { 10800.0, 0.1, 10800.1 } };
        for (const auto& [start, speed, after1s] : rows) {
            PlaybackClock clock([] { return now; });
            clock.speed = speed;
            clock.reset(start);
            now += 1000000;
            QVERIFY(
                std::abs(clock.time() - std::max(start, 0.0)) < microsecond); // moves when told to
            QCOMPARE(clock.update(), int64_t{ 1000000 });
            QVERIFY(std::abs(clock.time() - after1s) < microsecond);
            clock.speed = 4.0; // counts from here on
            now += 1000000;
            std::atomic<bool> running{ false };
            QVERIFY(std::abs(clock.updatedTimeIf(running) - after1s) < microsecond);
            running = true;
            QVERIFY(std::abs(clock.updatedTimeIf(running) - after1s - 4.0) < microsecond);
        }
    }
};

QTEST_APPLESS_MAIN(TestPlaybackClock)
#include "tst_playbackclock.moc"
