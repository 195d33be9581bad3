#include "pictureshape.h"

#include <QTest>
#include <QTransform>

#include <climits>

class TestPictureShape : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void turns_addUpLikeTheirMatrices()
    {
        for (int i = 0; i < 32; ++i) {
            const PictureTurn turn{ i % 2 != 0, i / 8 };
            const bool across = (i & 2) != 0, upDown = (i & 4) != 0;
            const QTransform flip = QTransform::fromScale(across ? -1 : 1, upDown ? -1 : 1);
            QCOMPARE(transformOf(turn.flipped(across, upDown)), transformOf(turn) * flip);
            const QTransform further = transformOf({ false, i % 4 });
            QCOMPARE(transformOf(turn.turned(i - 16)), transformOf(turn) * further);
        }
    }

    void matrices_giveTheNearestTurn()
    {
        const std::vector<std::pair<DisplayMatrix, PictureTurn>> rows{
            { { 65536, 0, 0, 0, -65536 }, { true, 2 } }, { { 0, 9, 0, 9, 0 }, { true, 3 } },
            { { 50203, 42126, 0, -42126, 50203 }, { false, 0 } }, // 40 degrees
            { { 42126, 50203, 0, -100406, 84252 }, { false, 1 } }, // 50 degrees, stretched
            { { -42126, -50203, 0, -50203, 42126 }, { true, 1 } }, { {}, { false, 0 } },
            { { 65536, -65536, 0, 65536, -65536 }, { false, 0 } }, // flat
            { { INT_MIN, INT_MAX, 0, INT_MIN, INT_MIN / 2 }, { false, 1 } }
        };
        for (const auto& [matrix, turn] : rows) {
            QCOMPARE(transformOf(turnOf(matrix)), transformOf(turn));
        }
    }

    void shape_stretchesTheShortSide()
    {
        const std::vector<std::tuple<int, int, QSize>> rows{ { 16, 11, { 1047, 575 } },
            { 8, 9, { 720, 647 } }, { 10, 1, { 7200, 575 } }, { 11, 1, { 720, 575 } },
            { 1, 11, { 720, 575 } }, { 0, 0, { 720, 575 } }, { -4, -3, { 720, 575 } } };
        for (const auto& [numerator, denominator, shape] : rows) {
            QCOMPARE(shapeOf({ 720, 575 }, pixelAspectOf(numerator, denominator)), shape);
        }
    }

private:
    static QTransform transformOf(const PictureTurn& turn)
    {
        return QTransform::fromScale(turn.mirrored ? -1 : 1, 1)
            * QTransform().rotate(90 * turn.quarters);
    }
};

QTEST_APPLESS_MAIN(TestPictureShape)
#include "tst_pictureshape.moc"
