#include "zslider.h"

#include <QtTest>

class TestZSlider : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void press_jumpsToThePoint()
    {
        const struct {
            const char* name;
            int width;
            QPoint range; // values at the left and right end
            int before; // so that the handle is not under the pointer
            int x;
            int expected;
        } rows[] = { { "left 0.5 %", 1000, { 0, 1500 }, 900, 4, 0 },
            { "behind the left 0.5 %", 1000, { 0, 1500 }, 900, 5, 8 }, // 7.5
            { "before the right 0.5 %", 1000, { 0, 1500 }, 0, 995, 1493 }, // 1492.5
            { "right 0.5 %", 1000, { 0, 1500 }, 0, 996, 1500 },
            { "half below zero", 200, { -101, -100 }, -100, 100, -101 }, // -100.5
            { "inverted", 200, { 150, 0 }, 0, 40, 120 },
            { "whole int range", 200, { INT_MIN, INT_MAX }, 0, 50, -(1 << 30) } };
        for (const auto& row : rows) {
            ZSlider slider;
            slider.resize(row.width, 20);
            const auto [least, most] = std::minmax({ row.range.x(), row.range.y() });
            slider.setRange(least, most);
            slider.setInvertedAppearance(row.range.x() > row.range.y());
            slider.setValue(row.before);
            QSignalSpy moved(&slider, &ZSlider::sliderPositionChanged);
            QTest::mousePress(&slider, Qt::LeftButton, {}, QPoint(row.x, 10));
            QVERIFY2(slider.value() == row.expected && !slider.isSliderDown(), row.name);
            QCOMPARE(moved.count(), 1);
        }
    }
};

QTEST_MAIN(TestZSlider)
#include "tst_zslider.moc"
