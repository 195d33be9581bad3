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
    void press_jumpsToThePoint_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<QPoint>("range");
        QTest::addColumn<int>("before"); // so that the handle is not under the pointer
        QTest::addColumn<int>("x");
        QTest::addColumn<int>("expected");
        // clang-format off
        QTest::newRow("left 0.5 %") << 1000 << QPoint(0, 1500) << 900 << 4 << 0;
        QTest::newRow("behind the left 0.5 %") << 1000 << QPoint(0, 1500) << 900 << 5 << 8; // 7.5
        QTest::newRow("before the right 0.5 %") << 1000 << QPoint(0, 1500) << 0 << 995 << 1493; // 1492.5
        QTest::newRow("right 0.5 %") << 1000 << QPoint(0, 1500) << 0 << 996 << 1500;
        QTest::newRow("not from zero") << 200 << QPoint(100, 300) << 100 << 150 << 250;
        QTest::newRow("half below zero") << 200 << QPoint(-101, -100) << -100 << 100 << -101; // -100.5
        QTest::newRow("value it has") << 200 << QPoint(0, 2) << 1 << 60 << 1;
        QTest::newRow("inverted") << 200 << QPoint(150, 0) << 0 << 40 << 120;
        QTest::newRow("inverted, below the minimum") << 200 << QPoint(150, 100) << 100 << 100 << 100;
        QTest::newRow("whole int range") << 200 << QPoint(INT_MIN, INT_MAX) << 0 << 50 << -(1 << 30);
        // clang-format on
    }

    void press_jumpsToThePoint()
    {
        QFETCH(int, width);
        QFETCH(QPoint, range); // values at the left and right end
        QFETCH(int, before);
        QFETCH(int, x);
        QFETCH(int, expected);
        ZSlider slider;
        slider.resize(width, 20);
        slider.setRange(std::min(range.x(), range.y()), std::max(range.x(), range.y()));
        slider.setInvertedAppearance(range.x() > range.y());
        slider.setValue(before);
        QSignalSpy moved(&slider, &ZSlider::sliderPositionChanged);
        QTest::mousePress(&slider, Qt::LeftButton, {}, QPoint(x, 10));
        QVERIFY(!slider.isSliderDown());
        QCOMPARE(slider.value(), expected);
        QCOMPARE(moved.count(), before == expected ? 0 : 1);
    }

    void handleAndOtherButtons_doNotJump()
    {
        ZSlider slider;
        slider.resize(200, 20);
        QSignalSpy moved(&slider, &ZSlider::sliderPositionChanged);
        QTest::mousePress(&slider, Qt::RightButton, {}, QPoint(150, 10));
        QTest::mousePress(&slider, Qt::LeftButton, {}, QPoint(5, 10));
        QVERIFY(slider.isSliderDown());
        QCOMPARE(slider.value(), 0);
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
        QCOMPARE(widget.value(), 51);
        const std::pair<double, int> moves[] = { { 120.4, 61 }, { 900, 101 }, { -50, 1 } };
        for (const auto& [x, value] : moves) {
            moveTo(*slider, { x, 10 }, Qt::LeftButton);
            QCOMPARE(widget.value(), value);
        }
        QCOMPARE(moved.count(), 4);
    }
};

QTEST_MAIN(TestZSlider)
#include "tst_zslider.moc"
