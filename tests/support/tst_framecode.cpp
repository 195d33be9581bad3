#include "framecode.h"

#include <QImage>
#include <QtTest>

class TestFrameCode : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void read_findsTheNumberPainted_data();
    void read_findsTheNumberPainted();
    void read_survivesNoiseAndScaling();
    void read_refusesWhatIsNoCode();
    void read_refusesEverySingleFlippedCell();
};

namespace {

QImage numbered(int number, QSize size = { 320, 180 })
{
    QImage image(size, QImage::Format_RGB888);
    image.fill(Qt::darkGreen);
    framecode::paint(image, number);
    return image;
}

} // namespace

void TestFrameCode::read_findsTheNumberPainted_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("common") << QSize(320, 180);
    QTest::newRow("padded rows") << QSize(638, 180);
    QTest::newRow("wide, padded rows") << QSize(1366, 180);
    QTest::newRow("smallest") << QSize(framecode::width, framecode::height);
}

void TestFrameCode::read_findsTheNumberPainted()
{
    QFETCH(const QSize, size);
    for (const int number : { 0, 1, 2, 150, 255, 256, 32767, framecode::maxNumber }) {
        QCOMPARE(framecode::read(numbered(number, size)), number);
    }
}

void TestFrameCode::read_survivesNoiseAndScaling()
{
    QImage image = numbered(1234);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width() * 3; ++x) {
            uint8_t& value = image.scanLine(y)[x];
            value = static_cast<uint8_t>(qBound(0, value + (x * 7 + y * 13) % 101 - 50, 255));
        }
    }
    QCOMPARE(framecode::read(image), 1234);
    const QImage scaled =
        image.scaled(image.size() * 1.75, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    QCOMPARE(framecode::read(scaled, 1.75), 1234);
}

void TestFrameCode::read_refusesWhatIsNoCode()
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

    QImage blend =
        numbered(7); // half of picture 7 and half of picture 8, as a broken reference leaves it
    const QImage other = numbered(8);
    for (int y = 0; y < blend.height(); ++y) {
        for (int x = 0; x < blend.width() * 3; ++x) {
            uint8_t& value = blend.scanLine(y)[x];
            value = static_cast<uint8_t>((value + other.constScanLine(y)[x]) / 2);
        }
    }
    QCOMPARE(framecode::read(blend), -1);
}

void TestFrameCode::read_refusesEverySingleFlippedCell()
{
    for (int cell = 0; cell < framecode::rows * framecode::columns; ++cell) {
        QImage image = numbered(300);
        const int left = cell % framecode::columns * framecode::cellSize;
        const int top = cell / framecode::columns * framecode::cellSize;
        for (int y = top; y < top + framecode::cellSize; ++y) {
            for (int x = left * 3; x < (left + framecode::cellSize) * 3; ++x) {
                image.scanLine(y)[x] ^= 0xff;
            }
        }
        QCOMPARE(framecode::read(image), -1);
    }
}

QTEST_MAIN(TestFrameCode)
#include "tst_framecode.moc"
