#include "playbacksliderwidget.h"
#include "zslider.h"

#include <QtTest>

namespace {

void moveTo(QWidget& widget, const QPointF& position, Qt::MouseButtons buttons)
{
    QMouseEvent event(QEvent::MouseMove, position, Qt::NoButton, buttons, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &event);
}

} // namespace

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
            { "not from zero", 200, { 100, 300 }, 100, 150, 250 },
            { "half below zero", 200, { -101, -100 }, -100, 100, -101 }, // -100.5
            { "value it has", 200, { 0, 2 }, 1, 60, 1 },
            { "inverted", 200, { 150, 0 }, 0, 40, 120 },
            { "inverted, below the minimum", 200, { 150, 100 }, 100, 100, 100 },
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
            QVERIFY2(moved.count() == (row.before == row.expected ? 0 : 1), row.name);
        }
    }

    void handleAndOtherButtons_doNotJump()
    {
        ZSlider slider;
        slider.resize(200, 20);
        QSignalSpy moved(&slider, &ZSlider::sliderPositionChanged);
        QTest::mousePress(&slider, Qt::RightButton, {}, QPoint(150, 10));
        QTest::mousePress(&slider, Qt::LeftButton, {}, QPoint(5, 10));
        QVERIFY(slider.isSliderDown() && slider.value() == 0);
        moveTo(slider, { 105, 10 }, Qt::LeftButton); // dragging the handle is the toolkit's
        QVERIFY(slider.value() > 45 && slider.value() < 60);
        QCOMPARE(moved.count(), 0);
    }

    void drag_followsThePointerToTheEnds()
    {
        PlaybackSliderWidget widget;
        widget.setRange(1, 101);
        widget.setValue(1);
        auto* slider = widget.findChild<ZSlider*>();
        slider->resize(200, 20);
        slider->setMouseTracking(true);
        QSignalSpy moved(&widget, &PlaybackSliderWidget::sliderPositionChanged);
        moveTo(*slider, { 60, 10 }, Qt::NoButton);
        QCOMPARE(widget.value(), 1);
        QTest::mousePress(slider, Qt::LeftButton, {}, QPoint(100, 10));
        for (const auto& [x, value] : { std::pair(100.0, 51), std::pair(120.4, 61),
                 std::pair(900.0, 101), std::pair(-50.0, 1) }) {
            moveTo(*slider, { x, 10 }, Qt::LeftButton);
            QCOMPARE(widget.value(), value);
        }
        QCOMPARE(moved.count(), 4);
    }
};

QTEST_MAIN(TestZSlider)
#include "tst_zslider.moc"
