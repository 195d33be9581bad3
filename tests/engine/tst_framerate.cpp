#include "framerate.h"

#include <QTest>

#include <cmath>

class TestFrameRate : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nearlyStandardRatesAreStandardAndImpossibleOnesAre25()
    {
        const std::vector<std::pair<double, double>> rows{ { 23.976, 24000.0 / 1001 }, { 24, 24 },
            { 29.9697, 30000.0 / 1001 }, { 59.9402, 60000.0 / 1001 }, { 25.004, 25 },
            { 25.006, 25.006 }, { 0, 25 }, { -30, 25 }, { INFINITY, 25 }, { NAN, 25 } };
        for (const auto& [measured, usable] : rows) {
            QCOMPARE(usableFrameRate(measured), usable);
        }
    }
};

QTEST_APPLESS_MAIN(TestFrameRate)
#include "tst_framerate.moc"
