#include "framerate.h"

#include <QTest>

#include <cmath>

class TestFrameRate : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void usableFrameRate_data()
    {
        QTest::addColumn<double>("measured");
        QTest::addColumn<double>("usable");
        QTest::newRow("23.976 rounded") << 23.976 << 24000.0 / 1001;
        QTest::newRow("24 is not 23.976") << 24.0 << 24.0;
        QTest::newRow("29.9697 means 29.97") << 29.9697 << 30000.0 / 1001;
        QTest::newRow("59.9402 means 59.94") << 59.9402 << 60000.0 / 1001;
        QTest::newRow("25.004 means 25") << 25.004 << 25.0;
        QTest::newRow("25.006 is itself") << 25.006 << 25.006;
        QTest::newRow("none") << 0.0 << 25.0;
        QTest::newRow("negative") << -30.0 << 25.0;
        QTest::newRow("infinite") << double(INFINITY) << 25.0;
        QTest::newRow("not a number") << double(NAN) << 25.0;
    }
    void usableFrameRate()
    {
        QFETCH(const double, measured);
        QTEST(::usableFrameRate(measured), "usable");
    }
};

QTEST_APPLESS_MAIN(TestFrameRate)
#include "tst_framerate.moc"
