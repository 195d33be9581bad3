#include "cachedrangewidget.h"
#include "softwareviewer.h"

#include <QPainter>
#include <QtTest>

namespace {

QPixmap plain(const QSize& size, const QColor& colour = Qt::red)
{
    QPixmap picture(size);
    picture.fill(colour);
    return picture;
}

// What a widget of that size must look like: one rectangle on the background, or nothing.
QImage imageOf(
    const QSize& size, const QColor& background, const QRect& rectangle, const QColor& colour)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(background);
    QPainter(&image).fillRect(rectangle, colour);
    return image;
}

QImage shown(QWidget& widget)
{
    return widget.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

} // namespace

class TestViews : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void picture_fillsTheViewInItsProportions()
    {
        // clang-format off
        const std::tuple<QSize, QSize, QRect> rows[] = { // the view, the picture and its place
            {{64, 36}, {64, 36}, {0, 0, 64, 36}},
            {{64, 65}, {640, 360}, {0, 14, 64, 36}}, // bars above and below
            {{101, 36}, {32, 18}, {18, 0, 64, 36}}, // bars at the sides
            {{100, 57}, {640, 360}, {0, 0, 99, 56}}, // rounded twice
        };
        // clang-format on
        SoftwareViewer viewer;
        for (const auto& [view, picture, expected] : rows) {
            viewer.resize(view);
            for (const QColor colour : { Qt::red, Qt::blue }) {
                viewer.setPixmap(plain(picture, colour));
                QCOMPARE(shown(viewer), imageOf(view, Qt::black, expected, colour));
            }
            QCOMPARE(QSize(viewer.imageWidth(), viewer.imageHeight()), expected.size());
        }
        viewer.setPixmap(plain({ 320, 180 }));
        for (const QSize& view : { QSize(64, 36), QSize(80, 45) }) { // of the same picture
            viewer.resize(view);
            QCOMPARE(shown(viewer), imageOf(view, Qt::red, {}, Qt::red));
        }
        viewer.setShape({ 320, 90 });
        QCOMPARE(shown(viewer), imageOf({ 80, 45 }, Qt::black, { 0, 11, 80, 22 }, Qt::red));
        viewer.setPixmap(QPixmap());
        QCOMPARE(shown(viewer), imageOf({ 80, 45 }, Qt::black, {}, Qt::red));
        QCOMPARE(viewer.imageWidth(), 0);
    }

    void cachedRange_isGreen()
    {
        const struct {
            const char* name;
            QPoint span, cached;
            QRect expected;
        } rows[] = { { "part", { 1, 101 }, { 26, 51 }, { 50, 0, 50, 4 } },
            { "cut off", { 1, 4 }, { 2, 3 }, { 66, 0, 67, 4 } }, // 66.7, 133.3
            { "all", { 1, 101 }, { 1, 101 }, { 0, 0, 200, 4 } },
            { "nothing cached", { 1, 101 }, { -1, -1 }, {} },
            { "one frame", { 1, 101 }, { 5, 5 }, {} }, { "no span", { 7, 7 }, { 7, 9 }, {} },
            { "far outside", { 1, 2 }, { -INT_MAX, INT_MAX }, { 0, 0, 200, 4 } } };
        for (const auto& row : rows) {
            CachedRangeWidget bar;
            bar.resize(200, 30);
            bar.setRange(row.span.x(), row.span.y());
            bar.setCachedRange(row.cached.x(), row.cached.y());
            const QImage expected = imageOf({ 200, 4 }, Qt::gray, row.expected, Qt::green);
            QVERIFY2(shown(bar) == expected, row.name);
        }
    }
};

QTEST_MAIN(TestViews)
#include "tst_views.moc"
