#include "pictureshape.h"

#include <cmath>
#include <cstdlib>

namespace {

constexpr int quartersOfATurn = 4;
constexpr int halfTurn = 2; // quarters
constexpr double widestPixel = 10.0;

int within(int quarters)
{
    return (quarters % quartersOfATurn + quartersOfATurn) % quartersOfATurn;
}

} // namespace

PictureTurn PictureTurn::flipped(bool horizontally, bool vertically) const
{
    // A vertical flip is a horizontal one and a half turn. A horizontal one comes before the turn
    // if that goes the other way round.
    const bool flips = horizontally != vertically;
    return PictureTurn{ mirrored != flips, flips ? within(-quarters) : quarters }.turned(
        vertically ? halfTurn : 0);
}

PictureTurn PictureTurn::turned(int furtherQuarters) const
{
    return { mirrored, within(quarters + furtherQuarters % quartersOfATurn) };
}

PictureTurn turnOf(const DisplayMatrix& matrix)
{
    const int64_t a = matrix[0];
    const int64_t b = matrix[1];
    const int64_t c = matrix[3];
    const int64_t d = matrix[4];
    if (a * d == b * c) {
        return {};
    }
    // Mirroring leaves the y axis alone, so where this points tells the turn.
    const bool staysVertical = std::abs(d) >= std::abs(c);
    const int quarters = staysVertical ? (d > 0 ? 0 : 2) : (c < 0 ? 1 : 3);
    return { a * d < b * c, quarters };
}

double pixelAspectOf(int numerator, int denominator)
{
    if (numerator <= 0 || denominator <= 0) {
        return 1.0;
    }
    const double aspect = static_cast<double>(numerator) / denominator;
    return aspect <= widestPixel && aspect >= 1.0 / widestPixel ? aspect : 1.0;
}

QSize shapeOf(const QSize& stored, double pixelAspect)
{
    const auto stretched = [](int side, double factor) {
        return static_cast<int>(std::lround(side * factor));
    };
    return pixelAspect >= 1.0
        ? QSize(stretched(stored.width(), pixelAspect), stored.height())
        : QSize(stored.width(), stretched(stored.height(), 1.0 / pixelAspect));
}
