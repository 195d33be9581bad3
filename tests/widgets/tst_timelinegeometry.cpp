#include "frametext.h"
#include "rangedrag.h"
#include "timelinegeometry.h"

#include <QtTest>

using Part = RangeDrag::Part;

class TestTimelineGeometry : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void framesAreWritten()
    {
        // clang-format off
        const struct { const char* name; double rate; int frame; int type; const char* text; } rows[] = {
            {"number", 24, 12, 0, "12"},
            {"seconds", 24, 38, 1, "1.54"},
            {"before the hour", 25, 90000, 2, "59:59:24"},
            {"hour", 24, 86401, 2, "01:00:00:00"},
            {"29.97 counts 30", 29.97, 1831, 2, "01:01:00"},
            {"half rounds up", 12.5, 26, 2, "00:01:12"},
            {"rate beyond an int", 1e300, INT_MAX, 2, "00:00:2147483646"},
        };
        // clang-format on
        for (const auto& row : rows) {
            const QString text = frameText(row.frame, row.rate, DISPLAY_TYPE(row.type));
            QVERIFY2(text == row.text, qPrintable(row.name + (": " + text)));
        }
    }

    void framesAndPlacesBelongTogether()
    {
        const TimelineGeometry wide(timelineMetrics, { 1000, 40 }); // track of 800 from 100
        QCOMPARE(wide.positionOf(2'000'000'000, { 1, 2'000'000'001 }), 899);
        QCOMPARE(wide.frameAt(500, { 1, 2'000'000'001 }), 1'000'000'001);
        for (const auto& [x, frame] : { std::pair(103, 1), std::pair(104, 2), std::pair(899, 101),
                 std::pair(INT_MIN, 1), std::pair(INT_MAX, 101) }) { // 8 pixels a frame
            QCOMPARE(wide.frameAt(x, { 1, 101 }), frame);
        }
    }

    void drag_movesTheRange()
    {
        // The frames under the pointer and the ranges to ask for.
        // clang-format off
        const struct { Part part; FrameRange range; int from; QString moves; } rows[] = {
            {Part::Start, {20, 70}, 20, "15:15-70 80:80-70 "}, // beyond the end
            {Part::End, {20, 70}, 70, "90:20-90 10:20-10 "}, // before the start
            {Part::Whole, {20, 70}, 30, "35:25-75 25:15-65 "},
            {Part::Whole, {10, 20}, 15, "5:1-10 3:1-8 6:1-11 7:2-12 "}, // against frame 1 and back
            {Part::Whole, {10, 20}, 15, "3:1-8 20:15-25 "}, // leaping back
            {Part::Whole, {80, 95}, 85, "95:90-100 92:87-100 86:81-96 "}, // against the last frame
            {Part::Whole, {1, INT_MAX}, INT_MIN, "2147483647:2147483647-100 "},
        };
        // clang-format on
        for (const auto& [part, range, from, moves] : rows) {
            RangeDrag drag(part, range);
            FrameRange moved = range;
            int last = from;
            QString seen;
            for (const QString& move : moves.split(u' ', Qt::SkipEmptyParts)) {
                const int to = move.section(u':', 0, 0).toInt();
                moved = drag.moved(moved, std::exchange(last, to), to, 100);
                seen += QStringLiteral("%1:%2-%3 ").arg(to).arg(moved.start).arg(moved.end);
            }
            QCOMPARE(seen, moves);
        }
    }
};

QTEST_APPLESS_MAIN(TestTimelineGeometry)
#include "tst_timelinegeometry.moc"
