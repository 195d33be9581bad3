#include "framecode.h"

#include <QImage>
#include <QPainter>
#include <QtTest>

// That a picture is known by its number, and never taken for another, is what the tests rest on.
class TestFrameCode : public QObject {
    Q_OBJECT

    static QImage numbered(int number, QSize size = { 320, 180 })
    {
        QImage image(size, QImage::Format_RGB888);
        image.fill(Qt::darkGreen);
        framecode::paint(image, number);
        return image;
    }

private Q_SLOTS:
    void read_findsTheNumberPainted()
    {
        for (const QSize& size : { QSize(320, 180), QSize(638, 180), QSize(1366, 180), // padded
                 QSize(framecode::width, framecode::height) }) {
            for (const int number : { 0, 1, 255, 256, framecode::maxNumber }) {
                QCOMPARE(framecode::read(numbered(number, size)), number);
            }
        }
        const QImage scaled =
            numbered(1234).scaled(560, 315, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        QCOMPARE(framecode::read(scaled, 1.75), 1234);
    }

    void read_refusesWhatIsNoCode()
    {
        QCOMPARE(framecode::read(QImage()), -1);
        QCOMPARE(framecode::read(numbered(5).copy(0, 0, framecode::width - 1, 180)), -1);
        QCOMPARE(framecode::read(numbered(7).mirrored(true, false)), -1);
        const QImage image = numbered(300);
        for (int cell = 0; cell < framecode::rows * framecode::columns; ++cell) {
            const QPoint place(cell % framecode::columns, cell / framecode::columns);
            const QRect square(
                place * framecode::cellSize, QSize(framecode::cellSize, framecode::cellSize));
            const int other = 255 - image.pixelColor(square.topLeft()).red();
            for (const int grey : { 128, other }) { // as of two blended pictures, or of another
                QImage spoilt = image;
                QPainter(&spoilt).fillRect(square, QColor(grey, grey, grey));
                QCOMPARE(framecode::read(spoilt), -1);
            }
        }
    }
};

QTEST_MAIN(TestFrameCode)
#include "tst_framecode.moc"
