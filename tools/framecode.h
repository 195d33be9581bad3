#pragma once

#include <cstdint>

class QImage;

/// A picture's own frame number as a block of black and white cells in its top left corner, coarse
/// enough to survive a lossy codec at a low bitrate. Beside the 16 bits of the number it holds a
/// fixed pattern and a checksum, so that grey, blended and foreign pictures are told apart from
/// numbered ones.
namespace framecode {

constexpr int cellSize = 12; // pixels
constexpr int columns = 16;
constexpr int rows = 2;
constexpr int width = cellSize * columns; // pixels; the block of a smaller picture cannot be read
constexpr int height = cellSize * rows;
constexpr int maxNumber = 0xffff;

/// `rgb` is packed RGB888 with rows `stride` bytes apart.
void paint(uint8_t* rgb, int imageWidth, int imageHeight, int stride, int number);
void paint(QImage& image, int number); // Format_RGB888

/// Number of the picture, -1 where it carries none. `scale` is the size of the picture relative to
/// the one painted.
[[nodiscard]] int read(
    const uint8_t* rgb, int imageWidth, int imageHeight, int stride, double scale = 1.0);
[[nodiscard]] int read(const QImage& image, double scale = 1.0);

} // namespace framecode
