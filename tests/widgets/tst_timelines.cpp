#include "bookmarks.h"
#include "rangetimelinewidget.h"
#include "settings.h"

#include <QAction>
#include <QMenu>
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

/// What differs from the pixels given as "x,y,r,g,b ...", but for the rounding of mixed colours.
QString wrongPixels(TimelineWidget& timeline, const QString& expected)
{
    const QImage image = timeline.grab().toImage();
    QString wrong;
    for (const QString& pixel : expected.split(u' ')) {
        const QStringList v = pixel.split(u',');
        const QColor seen = image.pixelColor(v[0].toInt(), v[1].toInt());
        const int off = qAbs(seen.red() - v[2].toInt()) + qAbs(seen.green() - v[3].toInt())
            + qAbs(seen.blue() - v[4].toInt());
        wrong += off > 3 ? pixel + seen.name() : "";
    }
    return wrong;
}

bool isBlack(TimelineWidget& timeline, const QRect& box)
{
    const QImage image = timeline.grab(box).toImage();
    QImage black(image.size(), image.format());
    black.fill(Qt::black);
    return image == black;
}

} // namespace

class TestTimelines : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { settings().timeline = settings().rangeTimeline = { 0, false, true, true, true }; }

    void partsStandInTheirPlaces()
    {
        const QPoint none(-1, -1);
        // clang-format off
        const struct { const char* name; bool ofRange; QPoint hover; const char* pixels; } rows[] = {
            {"track", false, none, "150,26,0,0,0 150,27,64,64,64 150,32,64,64,64 150,33,0,0,0 99,28,0,0,0 100,28,64,64,64 499,28,64,64,64 500,28,0,0,0"},
            {"range", false, none, "199,28,64,64,64 200,25,140,140,140 201,34,140,140,140 202,25,0,0,0 202,26,140,140,140 399,33,140,140,140 401,25,140,140,140 402,28,64,64,64"},
            {"cache", false, none, "219,31,140,140,140 220,30,70,97,141 220,29,140,140,140 339,32,70,97,141 339,33,140,140,140 340,31,140,140,140"},
            {"current frame", false, none, "299,28,140,140,140 300,25,200,200,200 301,34,200,200,200 302,28,140,140,140 300,35,0,0,0"},
            {"bookmarks", false, none, "139,28,64,64,64 140,25,200,200,200 140,34,200,200,200 141,28,64,64,64 420,31,64,64,64 420,32,176,176,26 459,33,150,150,0 460,32,64,64,64"},
            {"start handle", false, {192, 24}, "192,29,200,200,200 196,29,0,0,0 201,29,200,200,200 408,29,64,64,64 250,25,0,0,0"},
            {"end handle", false, {409, 35}, "192,29,64,64,64 404,29,0,0,0 400,29,200,200,200 409,29,200,200,200 250,25,0,0,0"},
            {"range hovered", false, {250, 30}, "196,29,0,0,0 404,29,0,0,0 240,24,0,0,0 240,25,200,200,200 240,34,200,200,200 240,35,0,0,0 252,28,161,161,161 254,28,140,140,140"},
            {"range timeline", true, none, "49,29,0,0,0 50,18,140,140,140 51,40,140,140,140 50,17,0,0,0 50,41,0,0,0 52,29,160,160,164 549,29,160,160,164 551,18,140,140,140 552,29,0,0,0 150,28,0,0,0 150,30,0,0,0"},
            {"its frames", true, none, "300,18,200,200,200 301,41,200,200,200 302,20,0,0,0 300,42,0,0,0 200,18,200,200,200 200,41,200,200,200 201,20,0,0,0 99,29,160,160,164 100,29,80,107,153 399,29,80,107,153 400,29,160,160,164"},
        };
        // clang-format on
        for (const auto& row : rows) {
            Bookmarks bookmarks;
            bookmarks.addFrame(row.ofRange ? 41 : 11);
            bookmarks.addRange(81, 91, {});
            const auto timeline = makeTimeline(row.ofRange);
            timeline->setBookmarks(&bookmarks);
            timeline->setAttribute(Qt::WA_UnderMouse, row.hover != none);
            QCursor::setPos(timeline->mapToGlobal(row.hover));
            moveTo(*timeline, row.hover);
            const QString wrong = wrongPixels(*timeline, row.pixels);
            QVERIFY2(wrong.isEmpty(), qPrintable(row.name + (": " + wrong)));
        }
    }

    void textsFit()
    {
        const auto main = makeTimeline(false); // "51" is centred on 300
        QVERIFY(isBlack(*main, { 0, 0, 284, 20 }) && !isBlack(*main, { 286, 0, 12, 20 }));
        QVERIFY(isBlack(*main, { 316, 0, 284, 20 }) && !isBlack(*main, { 302, 0, 12, 20 }));
        const auto range = makeTimeline(true);
        range->setDisplayType(DISPLAY_TYPE::TimeCode);
        range->setRange(90'000, 180'000); // an hour and more
        QVERIFY(isBlack(*range, { 0, 0, 600, 14 })); // the frame is not in the range
        QVERIFY(isBlack(*range, { 0, 16, 5, 30 }));
        QVERIFY(isBlack(*range, { 599, 16, 1, 30 }) && !isBlack(*range, { 580, 16, 10, 30 }));
    }

    void dragsAskForFramesAndRanges()
    {
        const FrameRange part{ 26, 76 };
        // clang-format off
        const struct { QPoint press; QList<QPointF> moves; QString requests; FrameRange range; Qt::KeyboardModifiers keys; bool ofRange; } rows[] = {
            {{192, 35}, {{120, 30}, {900, -20}}, "f26 r6-76 f6 r101-76 f101 ", part, {}, false}, // start handle
            {{409, 24}, {{440, 30}}, "f76 r26-86 f86 ", part, {}, false}, // end handle
            {{300, 30}, {{320, 30}}, "f51 r31-81 f56s ", part, {}, false}, // range
            {{300, 30}, {{320, 30}}, "f51 f56s ", {1, 101}, {}, false}, // all there is is not moved
            {{50, 10}, {{301.5, 10}, {301.4, 10}, {500, 10}}, "f1 f52s f51s f101s ", part, {}, false}, // scrub
            {{44, 30}, {{105, 99}, {550, 0}}, "f26 f32s f76s ", part, {}, true}, // scrub
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
        const std::tuple<bool, int, QString> cases[] = { { false, 306, "Current" },
            { false, 307, "53" }, { true, 294, "Current" }, { true, 293, "50" } };
        for (const auto& [ofRange, x, name] : cases) {
            const auto timeline = makeTimeline(ofRange);
            QString texts;
            QTimer menuIsOpen;
            connect(&menuIsOpen, &QTimer::timeout, [&texts] {
                QWidget* menu = QApplication::activePopupWidget();
                const auto* last = menu->actions().constLast();
                for (const auto* action : menu->actions() + last->menu()->actions()) {
                    texts += action->text() + (action->isChecked() ? "*|" : "|");
                }
                menu->close();
            });
            menuIsOpen.start();
            timeline->contextMenu({ x, 30 });
            const QString expected("Range Start to %1|Range End to %1|Reset Playback Range||"
                                   "Frame Numbers*|Time Code|Seconds||Display|"
                                   "Position Timeline at Top||Frame Bookmarks*|%2Cache*|");
            QCOMPARE(texts, expected.arg(name, ofRange ? "" : "Range Bookmarks*|"));
            QSignalSpy ranges(timeline.get(), &TimelineWidget::rangeChangeRequest);
            timeline->findChild<QAction*>("rangeEnd")->trigger();
            QCOMPARE(ranges.value(0), QVariantList({ 26, name == "Current" ? 51 : name.toInt() }));
        }
    }

    void choicesHoldForTimelinesOfTheSameKind()
    {
        const auto main = makeTimeline(false);
        main->findChild<QAction*>("seconds")->trigger();
        QCOMPARE(main->frameToString(26), QString("1.00"));
        main->findChild<QAction*>("cache")->setChecked(true);
        main->findChild<QAction*>("cache")->trigger();
        QCOMPARE(wrongPixels(*makeTimeline(false), "220,30,140,140,140"), QString());
        const TimelineDisplay& range = settings().rangeTimeline;
        QVERIFY(settings().timeline.displayType == 1 && range.displayType == 0 && range.showCache);
    }

    void anyNumbersAndSizesArePainted()
    {
        for (int i = 0; i < 250; ++i) {
            constexpr int numbers[] = { INT_MIN, 0, 1, 2, INT_MAX };
            const auto timeline = makeTimeline(i % 2 == 1);
            timeline->setMinimumWidth(0);
            timeline->resize(i % 3 * 150, timeline->height());
            timeline->setFrameCount(numbers[i / 2 % 5]);
            timeline->setCurrentFrame(numbers[i / 10 % 5]);
            timeline->setRange(numbers[i / 50 % 5], numbers[i / 2 % 5]);
            timeline->setCachedRange(numbers[i / 10 % 5], numbers[i / 50 % 5]);
            QTest::mousePress(timeline.get(), Qt::LeftButton, {}, { 90, 30 });
            moveTo(*timeline, { 120, 30 }, Qt::LeftButton);
            QVERIFY(timeline->width() == 0 || !timeline->grab().isNull());
        }
    }
};

QTEST_MAIN(TestTimelines)
#include "tst_timelines.moc"
