#pragma once

#include <QSize>

#include <array>
#include <cstdint>

/// A mirroring and turns by quarters: what can be done to a picture without touching its pixels'
/// values.
struct PictureTurn {
    bool mirrored = false; // left and right exchanged, before the turn
    int quarters = 0; // clockwise, 0 to 3

    /// This turn, then a flip.
    [[nodiscard]] PictureTurn flipped(bool horizontally, bool vertically) const;
    /// This turn, then a further one by quarters: clockwise, negative ones the other way.
    [[nodiscard]] PictureTurn turned(int furtherQuarters) const;
    [[nodiscard]] bool exchangesSides() const { return quarters % 2 != 0; }
};

/// Row by row; of a point's x and y, with y downwards, it makes
/// (m[0] x + m[3] y, m[1] x + m[4] y), up to scale and position.
using DisplayMatrix = std::array<int32_t, 9>;

/// The turn that a matrix asks for: the nearest one by quarters. One that would flatten the picture
/// asks for none.
PictureTurn turnOf(const DisplayMatrix& matrix);

/// Width of a stored pixel by its height. A ratio that no camera or disc has (not positive, or
/// beyond 10:1) counts as 1.
double pixelAspectOf(int numerator, int denominator);

/// Size in square pixels of a picture stored with such pixels: the side that is too short is
/// stretched and rounded to the nearest pixel, so that at 100 % no stored pixel is lost.
QSize shapeOf(const QSize& stored, double pixelAspect);
