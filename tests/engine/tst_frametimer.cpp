#include "frametimer.h"

#include <QTest>

#include <cmath>

namespace {

constexpr int64_t none = FrameTimer::noTime;
constexpr double frameDuration = 0.04; // seconds; a tick of the streams here is one frame
constexpr double exact = 1e-9; // seconds; sums of doubles

struct Step {
    enum Kind { Send, Show, Flush } kind;
    int64_t decodeTime = none; // of the packet sent, or of the one that released the picture
    double frames = 0.0; // time expected, in frame durations
    bool guessed = false;
    int64_t ownTime = none;
    int repeatedFields = 0;
};
using Steps = QVector<Step>;

constexpr bool guessed = true;

Step send(int64_t decodeTime)
{
    return { Step::Send, decodeTime };
}
Step show(int64_t decodeTime, double frames, bool isGuessed = false, int64_t ownTime = none,
    int repeatedFields = 0)
{
    return { Step::Show, decodeTime, frames, isGuessed, ownTime, repeatedFields };
}
Step flush()
{
    return { Step::Flush };
}

constexpr int packets = 60;

/// Times of the pictures of a decoder that holds `reorder` packets back to sort them and
/// `threadDelay` more to decode them at once. Of the packets every `missing`th has a decode time;
/// 0: all.
QVector<double> timesWith(int threadDelay, int reorder, int missing)
{
    const auto decodeTime = [missing](int packet) {
        const bool known = packet < packets && (missing == 0 || packet % missing == 0);
        return known ? int64_t{ packet } : none;
    };
    FrameTimer timer({ frameDuration, 1.0 / frameDuration });
    QVector<double> times;
    for (int sent = 0; sent < packets + reorder + threadDelay; ++sent) {
        if (sent < packets) {
            timer.packetSent(decodeTime(sent));
        }
        if (sent >= reorder + threadDelay) {
            times.append(timer.timeOf({ decodeTime(times.size() + reorder) }));
        }
    }
    return times;
}

} // namespace

Q_DECLARE_METATYPE(Steps)

class TestFrameTimer : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void rules_data()
    {
        QTest::addColumn<Steps>("steps");
        QTest::addColumn<double>("delay"); // frames
        QTest::addColumn<bool>("ignoresDecodeTimes");
        const auto row = [](const char* name, const Steps& steps, double delay = 0.0,
                             bool ignores = false) {
            QTest::newRow(name) << steps << delay << ignores;
        };
        row("a late start is 0", { send(12), show(12, 0), send(13), show(13, 1) });
        row("a start before 0 stays", { send(-2), show(-2, -2), send(-1), show(-1, -1) });
        row("no decode times, repeated fields",
            { send(none), show(none, 0, guessed, none, 1), send(none),
                show(none, 1.5, guessed, none, 2), send(none), show(none, 3.5, guessed) });
        row("one missing in the middle",
            { send(0), show(0, 0), send(none), show(none, 1, guessed), send(2), show(2, 2) });
        row("the decoder's last pictures",
            { send(0), send(1), send(2), show(2, 0), send(3), show(3, 1), show(none, 2, guessed),
                show(none, 3, guessed) });
        row("a packet without picture foretells the next",
            { send(0), show(0, 0), send(5), send(none), show(none, 5, guessed), send(7),
                show(7, 7) });
        row("decode times that mean nothing",
            { send(90), show(90, 0, guessed), send(91), show(91, 1, guessed), send(7),
                show(7, 2, guessed) },
            0.0, true);
        row("nor do they after a seek",
            { send(0), show(0, 0, guessed), flush(), send(90), show(90, 50, false, 50), send(91),
                show(91, 51, guessed, 51) },
            0.0, true);
        row("a delay is subtracted", { send(3), show(3, 0), send(4), show(4, 1) }, 2.0);
        row("a seek keeps the start", { send(12), show(12, 0), flush(), send(62), show(62, 50) });
        row("a seek before the first picture fixes none",
            { flush(), send(50), show(50, 50), send(51), show(51, 51) });
        row("a seek forgets what was sent",
            { send(0), show(0, 0), send(8), send(9), flush(), send(20), send(none),
                show(none, 20, guessed) });
        row("a seek into a last group too short for a decode time",
            { send(0), show(0, 0), flush(), show(none, 97, false, 97),
                show(none, 98, guessed, 98) });
        row("its own time counts only where nothing else is known",
            { send(0), show(0, 0), flush(), send(90), send(91), show(none, 91, guessed, 95) });
    }
    void rules()
    {
        QFETCH(const Steps, steps);
        QFETCH(const double, delay);
        QFETCH(const bool, ignoresDecodeTimes);
        FrameTimer timer(
            { frameDuration, 1.0 / frameDuration, delay * frameDuration, ignoresDecodeTimes });
        for (const Step& step : steps) {
            if (step.kind == Step::Send) {
                timer.packetSent(step.decodeTime);
            } else if (step.kind == Step::Flush) {
                timer.flush();
            } else {
                const double time =
                    timer.timeOf({ step.decodeTime, none, step.ownTime, step.repeatedFields });
                QVERIFY2(std::abs(time - step.frames * frameDuration) < exact,
                    qPrintable(QStringLiteral("%1 instead of %2")
                                   .arg(time / frameDuration)
                                   .arg(step.frames)));
                QCOMPARE(timer.wasGuessed(), step.guessed);
            }
        }
    }

    void timesDoNotDependOnWhenPicturesComeOut_data()
    {
        QTest::addColumn<int>("reorder"); // packets before the first picture can be shown
        QTest::addColumn<int>("missing"); // one packet of so many has a decode time; 0: all have
        QTest::newRow("in order") << 0 << 0;
        QTest::newRow("reordered") << 2 << 0;
        QTest::newRow("most decode times missing") << 3 << 1000;
        QTest::newRow("some missing") << 2 << 3;
    }
    void timesDoNotDependOnWhenPicturesComeOut()
    {
        QFETCH(const int, reorder);
        QFETCH(const int, missing);
        const QVector<double> times = timesWith(0, reorder, missing);
        QCOMPARE(times.size(), packets);
        for (const int threadDelay : { 1, 2, 7 }) {
            QCOMPARE(timesWith(threadDelay, reorder, missing), times);
        }
        for (int i = 0; i < packets && missing == 0; ++i) {
            QVERIFY(std::abs(times[i] - i * frameDuration) < exact);
        }
    }

    void onGrid_findsTheFrameBehindAMillisecondStamp()
    {
        for (const double rate :
            { 24000.0 / 1001, 24.0, 25.0, 30000.0 / 1001, 30.0, 60000.0 / 1001, 60.0, 120.0 }) {
            for (int frame = 0; frame < 200000; ++frame) {
                const double stamp = std::round(frame / rate * 1000.0) / 1000.0;
                QCOMPARE(FrameTimer::onGrid(stamp, 1.0 / rate), frame * (1.0 / rate));
            }
        }
        for (const double offset : { 0.0011, -0.0011, 0.02 }) { // off the grid
            QCOMPARE(FrameTimer::onGrid(4.0 + offset, frameDuration), 4.0 + offset);
        }
        const double fast = 1.0 / 500; // a quarter of its frame is less than a millisecond
        QCOMPARE(FrameTimer::onGrid(4.0004, fast), 4.0);
        QCOMPARE(FrameTimer::onGrid(4.0006, fast), 4.0006);
    }
};

QTEST_APPLESS_MAIN(TestFrameTimer)
#include "tst_frametimer.moc"
