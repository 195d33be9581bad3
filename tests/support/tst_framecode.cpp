#include "framecode.h"

#include <QImage>
#include <QPainter>
#include <QtTest>

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
            for (const int number : { 0, 1, 2, 150, 255, 256, 32767, framecode::maxNumber }) {
                QCOMPARE(framecode::read(numbered(number, size)), number);
            }
        }
    }

    void read_survivesNoiseAndScaling()
    {
        QImage image = numbered(1234);
        for (int i = 0; i < image.sizeInBytes(); ++i) {
            uint8_t& value = image.bits()[i];
            value = static_cast<uint8_t>(qBound(0, value + i * 7 % 101 - 50, 255));
        }
        QCOMPARE(framecode::read(image), 1234);
        const QImage scaled =
            image.scaled(image.size() * 1.75, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        QCOMPARE(framecode::read(scaled, 1.75), 1234);
    }

    void read_refusesWhatIsNoCode()
    {
        QCOMPARE(framecode::read(QImage()), -1);
        QCOMPARE(framecode::read(numbered(5).copy(0, 0, framecode::width - 1, 180)), -1);
        for (const int grey : { 0, 16, 80, 128, 200, 255 }) {
            QImage plain(320, 180, QImage::Format_RGB888);
            plain.fill(QColor(grey, grey, grey));
            QCOMPARE(framecode::read(plain), -1);
        }
        QCOMPARE(framecode::read(numbered(7).mirrored(true, false)), -1);
        QCOMPARE(framecode::read(numbered(7).copy(framecode::cellSize, 0, 300, 180)), -1);

        QImage blend = numbered(7); // half of it picture 8, as a broken reference leaves it
        QPainter painter(&blend);
        painter.setOpacity(0.5);
        painter.drawImage(0, 0, numbered(8));
        painter.end();
        QCOMPARE(framecode::read(blend), -1);
    }

    void read_refusesEverySingleFlippedCell()
    {
        const QSize cellSize(framecode::cellSize, framecode::cellSize);
        for (int cell = 0; cell < framecode::rows * framecode::columns; ++cell) {
            const QPoint place(cell % framecode::columns, cell / framecode::columns);
            QImage image = numbered(300);
            QPainter painter(&image);
            painter.setCompositionMode(QPainter::CompositionMode_Difference);
            painter.fillRect(QRect(place * framecode::cellSize, cellSize), Qt::white);
            painter.end();
            QCOMPARE(framecode::read(image), -1);
        }
    }
};

QTEST_MAIN(TestFrameCode)
#include "tst_framecode.moc"
