#include "framerate.h"
#include "frametimer.h"

#include <QRegularExpression>
#include <QTest>

#include <cmath>

namespace {

constexpr int64_t none = FrameTimer::noTime;
constexpr double frameDuration = 0.04; // seconds; a tick of the streams here is one frame
constexpr double exact = 1e-9; // seconds; sums of doubles

} // namespace

class TestFrameTimer : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // >5 a packet with the decode time 5, >- one without; flush; 5=3 a picture that packet 5
    // released, expected at frame 3; -@9+1=3? one of no packet with the own time 9 and a repeated
    // field, expected at frame 3 by a guess.
    void rules_data()
    {
        QTest::addColumn<QString>("steps");
        QTest::addColumn<int>("delay"); // frames
        QTest::addColumn<bool>("ignoresDecodeTimes");
        QTest::addColumn<bool>("hasConstantRate");
        const auto row = [](const char* name, const char* steps, int delay = 0,
                             bool ignores = false, bool constant = false) {
            QTest::newRow(name) << steps << delay << ignores << constant;
        };
        const auto agreeing = [](int from, int to) {
            QByteArray text;
            for (int i = from; i <= to; ++i) {
                text += QString(" >%1 %1@%1=%1").arg(i).toUtf8();
            }
            return text;
        };
        // Where pictures are reordered the first one is released early.
        const QByteArray early = ">-1 -1@0=-1";
        row("a late start is 0", ">12 12=0 >13 13=1");
        row("a start before 0 stays", ">-2 -2=-2 >-1 -1=-1");
        row("repeated fields", ">- -+1=0? >- -+2=1.5? >- -=3.5?");
        row("one missing", ">0 0=0 >- -=1? >2 2=2");
        row("the decoder's last pictures", ">0 >1 >2 2=0 >3 3=1 -=2? -=3?");
        row("a packet without picture foretells the next", ">0 0=0 >5 >- -=5? >7 7=7");
        row("decode times that mean nothing", ">90 90=0? >91 91=1? >7 7=2?", 0, true);
        row("nor after a seek", ">0 0=0? flush >90 90@50=50 >91 91@51=51?", 0, true);
        row("a delay", ">3 3=0 >4 4=1", 2);
        row("a delay longer than the start is late", ">1 1=-1 >2 2=0", 2);
        row("a seek keeps the start", ">12 12=0 flush >62 62=50");
        row("a seek before the first picture", "flush >50 50=50 >51 51=51");
        row("a seek forgets what was sent", ">0 0=0 >8 >- flush >20 >- -=20?");
        row("a last group without decode times", ">0 0=0 flush -@97=97 -@98=98?");
        const auto regularRow = [&](const char* name, const QByteArray& steps,
                                    bool constant = true) {
            row(name, early + steps, 0, false, constant);
        };
        regularRow("own times count", agreeing(1, 32) + " >40 40@41=41 flush >- >52 52@50=50");
        regularRow("also across a seek",
            agreeing(1, 20) + " flush >49 49@50=49" + agreeing(51, 62) + " >70 70@71=71");
        regularRow("not yet", agreeing(1, 31) + " >40 40@41=40");
        regularRow("not at a rate that changes", agreeing(1, 32) + " >40 40@41=40", false);
        regularRow("not where one differs",
            agreeing(1, 9) + " >10 10@11=10" + agreeing(11, 50) + " >60 60@61=60");
        row("own time beside decode times", ">0 0=0 flush >90 >91 -@95=91?");
    }
    void rules()
    {
        QFETCH(const QString, steps);
        QFETCH(const int, delay);
        QFETCH(const bool, ignoresDecodeTimes);
        QFETCH(const bool, hasConstantRate);
        FrameTimer timer({ frameDuration, 1.0 / frameDuration, delay * frameDuration,
            ignoresDecodeTimes, hasConstantRate });
        const QRegularExpression picture(R"(^(-|-?\d+)(@\d+)?(\+\d)?=(-?[\d.]+)(\??)$)");
        const auto ticks = [](const QString& text) {
            bool isNumber = false;
            const int64_t value = text.toLongLong(&isNumber);
            return isNumber ? value : none;
        };
        for (const QString& step : steps.split(' ')) {
            const QRegularExpressionMatch match = picture.match(step);
            if (step == "flush") {
                timer.flush();
            } else if (step.startsWith('>')) {
                timer.packetSent(ticks(step.mid(1)));
            } else {
                QVERIFY(match.hasMatch());
                const double time = timer.timeOf({ ticks(match.captured(1)), none,
                    ticks(match.captured(2).mid(1)), match.captured(3).toInt() });
                const double off = time / frameDuration - match.captured(4).toDouble();
                QVERIFY2(
                    std::abs(off) < exact, qPrintable(QString("%1 off %2").arg(step).arg(off)));
                QCOMPARE(timer.wasGuessed(), !match.captured(5).isEmpty());
            }
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
        const double fast = 1.0 / 500; // a quarter of its frame is less than a millisecond
        QCOMPARE(FrameTimer::onGrid(4.0004, fast), 4.0);
        QCOMPARE(FrameTimer::onGrid(4.0006, fast), 4.0006); // off the grid
        QCOMPARE(FrameTimer::onGrid(4.0011, 0.04), 4.0011);
        QCOMPARE(FrameTimer::onGrid(3.9989, 0.04), 3.9989);
    }

    void nearlyStandardRatesAreStandardAndImpossibleOnesAre25()
    {
        for (const auto& [measured, usable] : { std::pair(23.976, 24000.0 / 1001),
                 std::pair(24.0, 24.0), std::pair(59.9402, 60000.0 / 1001), std::pair(25.004, 25.0),
                 std::pair(25.006, 25.006), std::pair(0.0, 25.0), std::pair(-30.0, 25.0),
                 std::pair(double(INFINITY), 25.0), std::pair(double(NAN), 25.0) }) {
            QCOMPARE(usableFrameRate(measured), usable);
        }
    }
};

QTEST_APPLESS_MAIN(TestFrameTimer)
#include "tst_frametimer.moc"
