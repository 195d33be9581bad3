#include "cachedrangewidget.h"
#include "softwareviewer.h"

#include <QPaintEngine>
#include <QPainter>
#include <QtTest>

namespace {

QPixmap redPicture(const QSize& size)
{
    QPixmap picture(size);
    picture.fill(Qt::red);
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

// Remembers which pixmap it is asked to draw.
class PixmapSpy : public QPaintEngine, public QPaintDevice {
public:
    bool begin(QPaintDevice* /*device*/) override { return true; }
    bool end() override { return true; }
    void updateState(const QPaintEngineState& /*state*/) override { }
    Type type() const override { return User; }
    QPaintEngine* paintEngine() const override { return const_cast<PixmapSpy*>(this); }
    void drawRects(const QRectF* /*rects*/, int /*count*/) override { }
    void drawPixmap(const QRectF& /*to*/, const QPixmap& pixmap, const QRectF& /*from*/) override
    {
        drawn = pixmap;
    }

    QPixmap drawn;

protected:
    int metric(PaintDeviceMetric metric) const override
    {
        return metric == PdmDevicePixelRatioScaled ? static_cast<int>(devicePixelRatioFScale()) : 1;
    }
};

} // namespace

class TestViews : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void picture_fillsTheViewInItsProportions_data()
    {
        QTest::addColumn<QSize>("view");
        QTest::addColumn<QSize>("picture");
        QTest::addColumn<QRect>("expected");
        QTest::newRow("same size") << QSize(64, 36) << QSize(64, 36) << QRect(0, 0, 64, 36);
        QTest::newRow("bars above and below")
            << QSize(64, 65) << QSize(640, 360) << QRect(0, 14, 64, 36);
        QTest::newRow("bars at the sides")
            << QSize(101, 36) << QSize(32, 18) << QRect(18, 0, 64, 36);
        QTest::newRow("rounded twice") << QSize(100, 57) << QSize(640, 360) << QRect(0, 0, 99, 56);
    }

    void picture_fillsTheViewInItsProportions()
    {
        QFETCH(QSize, view);
        QFETCH(QSize, picture);
        QFETCH(QRect, expected);
        SoftwareViewer viewer;
        viewer.resize(view);
        viewer.setPixmap(redPicture(picture));
        QCOMPARE(shown(viewer), imageOf(view, Qt::black, expected, Qt::red));
        QCOMPARE(QSize(viewer.imageWidth(), viewer.imageHeight()), expected.size());
        viewer.setPixmap(QPixmap());
        QCOMPARE(shown(viewer), imageOf(view, Qt::black, QRect(), Qt::red));
        QCOMPARE(viewer.imageWidth(), 0);
    }

    void picture_isScaledOncePerPictureAndSize()
    {
        SoftwareViewer viewer;
        viewer.resize(64, 36);
        const QPixmap first = redPicture({ 320, 180 });
        const auto paintedKey = [&viewer] {
            PixmapSpy spy;
            viewer.render(&spy, {}, {}, QWidget::RenderFlags());
            return spy.drawn.cacheKey();
        };
        viewer.setPixmap(first);
        const qint64 key = paintedKey();
        QVERIFY(key != 0 && key != first.cacheKey());
        QCOMPARE(paintedKey(), key);
        viewer.resize(80, 45);
        const qint64 largerKey = paintedKey();
        QVERIFY(largerKey != key);
        viewer.setPixmap(redPicture({ 320, 180 }));
        QVERIFY(paintedKey() != largerKey);
        viewer.setShape({ 320, 90 });
        QCOMPARE(shown(viewer), imageOf({ 80, 45 }, Qt::black, { 0, 11, 80, 22 }, Qt::red));
    }

    void cachedRange_isGreen_data()
    {
        QTest::addColumn<QPoint>("span");
        QTest::addColumn<QPoint>("cached");
        QTest::addColumn<QRect>("expected");
        QTest::newRow("part") << QPoint(1, 101) << QPoint(26, 51) << QRect(50, 0, 50, 4);
        QTest::newRow("cut off") << QPoint(1, 4) << QPoint(2, 3)
                                 << QRect(66, 0, 67, 4); // 66.7, 133.3
        QTest::newRow("all") << QPoint(1, 101) << QPoint(1, 101) << QRect(0, 0, 200, 4);
        QTest::newRow("nothing cached") << QPoint(1, 101) << QPoint(-1, -1) << QRect();
        QTest::newRow("one frame") << QPoint(1, 101) << QPoint(5, 5) << QRect();
        QTest::newRow("no span") << QPoint(7, 7) << QPoint(7, 9) << QRect();
        QTest::newRow("far outside")
            << QPoint(1, 2) << QPoint(-INT_MAX, INT_MAX) << QRect(0, 0, 200, 4);
    }

    void cachedRange_isGreen()
    {
        QFETCH(QPoint, span);
        QFETCH(QPoint, cached);
        QFETCH(QRect, expected);
        CachedRangeWidget bar;
        bar.resize(200, 30);
        bar.setRange(span.x(), span.y());
        bar.setCachedRange(cached.x(), cached.y());
        QCOMPARE(shown(bar), imageOf(QSize(200, 4), Qt::gray, expected, Qt::green));
    }
};

QTEST_MAIN(TestViews)
#include "tst_views.moc"
