#include "rangetimelinewidget.h"
#include "settings.h"

#include <QAction>
#include <QtTest>

#include <memory>

namespace {

/// 600 pixels wide with 101 frames of which 26 to 76 are played, frame 51 on show. The main
/// timeline has 4 pixels a frame from x = 100, the range timeline 10 pixels a frame from x = 50.
std::unique_ptr<TimelineWidget> makeTimeline(bool ofRange)
{
    std::unique_ptr<TimelineWidget> timeline(
        ofRange ? new RangeTimelineWidget : new TimelineWidget);
    timeline->resize(600, timeline->height());
    timeline->setFrameRate(25);
    timeline->setFrameCount(101);
    timeline->setRange(26, 76);
    timeline->setCurrentFrame(51);
    timeline->setCachedRange(31, 61);
    return timeline;
}

void moveTo(
    QWidget& widget, QPointF place, Qt::MouseButtons held = {}, Qt::KeyboardModifiers keys = {})
{
    const QPointF onScreen = widget.mapToGlobal({}) + place;
    QMouseEvent event(QEvent::MouseMove, place, place, onScreen, Qt::NoButton, held, keys);
    QCoreApplication::sendEvent(&widget, &event);
}

} // namespace

class TestTimelines : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { settings().timeline = settings().rangeTimeline = { 0, false, true, true, true }; }

    void dragsAskForFramesAndRanges()
    {
        const FrameRange part{ 26, 76 };
        // clang-format off
        const struct { QPoint press; QList<QPointF> moves; QString requests; FrameRange range; Qt::KeyboardModifiers keys; bool ofRange; } rows[] = {
            {{192, 35}, {{120, 30}, {900, -20}}, "f26 r6-76 f6 r101-76 f101 ", part, {}, false}, // start handle
            {{300, 30}, {{320, 30}}, "f51 f56s ", {1, 101}, {}, false}, // all there is is not moved
            {{50, 10}, {{301.5, 10}, {301.4, 10}, {500, 10}}, "f1 f52s f51s f101s ", part, {}, false}, // scrub
            {{20, 15}, {{30, 30}}, "f26 f26s ", part, {}, true}, // above the label
            {{20, 30}, {{21, 30}, {27, 30}, {27, 30}}, "r29-76 r32-76 ", part, {}, true}, // start label
            {{20, 30}, {{80, 30}}, "r56-76 f56 ", part, {}, true}, // past the current frame
            {{20, 30}, {{39, 30}, {60, 30}}, "r28-76 ", part, Qt::ControlModifier, true},
            {{570, 30}, {{567, 30}}, "r26-46 f46 ", part, Qt::ShiftModifier, true}, // end label
        };
        // clang-format on
        for (const auto& row : rows) {
            const auto timeline = makeTimeline(row.ofRange);
            TimelineWidget& bar = *timeline;
            bar.setRange(row.range.start, row.range.end);
            QString asked;
            connect(&bar, &TimelineWidget::frameChangeRequest, [&](int frame, bool sound) {
                asked += QStringLiteral("f%1%2 ").arg(frame).arg(sound ? "s" : "");
                bar.setCurrentFrame(frame);
            });
            connect(&bar, &TimelineWidget::rangeChangeRequest, [&](int start, int end) {
                asked += QStringLiteral("r%1-%2 ").arg(start).arg(end);
                bar.setRange(start, end);
            });
            QTest::mousePress(&bar, Qt::RightButton, {}, row.press);
            QTest::mousePress(&bar, Qt::LeftButton, {}, row.press);
            for (const QPointF& place : row.moves) {
                moveTo(bar, place, Qt::LeftButton, row.keys);
            }
            QTest::mouseRelease(&bar, Qt::LeftButton, {}, row.press);
            moveTo(bar, { 250, 5 }, Qt::LeftButton);
            QCOMPARE(asked, row.requests);
        }
    }

    void menuOffersTheFrameUnderThePointer()
    {
        for (const auto& [ofRange, x, frame] :
            { std::tuple(false, 306, 51), std::tuple(false, 307, 53), std::tuple(true, 294, 51),
                std::tuple(true, 293, 50) }) {
            const auto timeline = makeTimeline(ofRange);
            QTimer closer;
            closer.setSingleShot(true);
            connect(&closer, &QTimer::timeout, [] { QApplication::activePopupWidget()->close(); });
            closer.start(0);
            timeline->contextMenu({ x, 30 });
            auto* end = timeline->findChild<QAction*>("rangeEnd");
            QCOMPARE(end->text().endsWith("Current"), frame == 51);
            QSignalSpy ranges(timeline.get(), &TimelineWidget::rangeChangeRequest);
            end->trigger();
            QCOMPARE(ranges.value(0), QVariantList({ 26, frame }));
        }
    }

    void choiceOfTheDisplay_isOfItsKindOfTimeline()
    {
        const auto main = makeTimeline(false);
        main->findChild<QAction*>("seconds")->trigger();
        QCOMPARE(main->frameToString(26), QString("1.00"));
        QCOMPARE(settings().timeline.displayType, 1);
        QCOMPARE(settings().rangeTimeline.displayType, 0);
    }
};

QTEST_MAIN(TestTimelines)
#include "tst_timelines.moc"
