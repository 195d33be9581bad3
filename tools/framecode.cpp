#include "framecode.h"

#include <QImage>

#include <algorithm>
#include <cmath>

namespace framecode {
namespace {

constexpr uint32_t pattern = 0xb2; // neither a run nor a stripe; the top byte of every code
constexpr int darkest = 80; // mean luma of a black cell at most, of 255
constexpr int brightest = 175; // mean luma of a white cell at least

/// CRC-8 (polynomial 0x07) of a 16-bit number, started at 0xff so that 0 has bits set.
uint32_t checksum(uint32_t number)
{
    uint32_t crc = 0xff;
    for (int bit = 15; bit >= 0; --bit) {
        const uint32_t top = ((crc >> 7) ^ (number >> bit)) & 1;
        crc = ((crc << 1) ^ (top * 0x07)) & 0xff;
    }
    return crc;
}

uint32_t codeOf(uint32_t number)
{
    return pattern << 24 | number << 8 | checksum(number);
}

/// Mean luma of the middle of a cell, away from the edges that a codec or a scaler blurs.
int cellLuma(const uint8_t* rgb, int stride, int column, int row, double scale)
{
    const auto edge = [scale](int cell, double part) {
        return static_cast<int>(std::lround((cell + part) * cellSize * scale));
    };
    const int left = edge(column, 0.25);
    const int right = std::max(left + 1, edge(column, 0.75));
    const int top = edge(row, 0.25);
    const int bottom = std::max(top + 1, edge(row, 0.75));
    int sum = 0;
    for (int y = top; y < bottom; ++y) {
        const uint8_t* pixel = rgb + std::ptrdiff_t{ stride } * y + std::ptrdiff_t{ 3 } * left;
        for (int x = left; x < right; ++x, pixel += 3) {
            sum += (pixel[0] * 299 + pixel[1] * 587 + pixel[2] * 114) / 1000;
        }
    }
    return sum / ((right - left) * (bottom - top));
}

} // namespace

void paint(uint8_t* rgb, int imageWidth, int imageHeight, int stride, int number)
{
    const uint32_t code = codeOf(static_cast<uint32_t>(number) & maxNumber);
    for (int y = 0; y < std::min(height, imageHeight); ++y) {
        uint8_t* pixel = rgb + std::ptrdiff_t{ stride } * y;
        for (int x = 0; x < std::min(width, imageWidth); ++x, pixel += 3) {
            const int bit = 31 - (y / cellSize * columns + x / cellSize);
            std::fill_n(pixel, 3, static_cast<uint8_t>((code >> bit & 1) != 0 ? 255 : 0));
        }
    }
}

void paint(QImage& image, int number)
{
    Q_ASSERT(image.format() == QImage::Format_RGB888);
    paint(image.bits(), image.width(), image.height(), image.bytesPerLine(), number);
}

int read(const uint8_t* rgb, int imageWidth, int imageHeight, int stride, double scale)
{
    if (rgb == nullptr || imageWidth < width * scale || imageHeight < height * scale) {
        return -1;
    }
    uint32_t code = 0;
    for (int cell = 0; cell < rows * columns; ++cell) {
        const int luma = cellLuma(rgb, stride, cell % columns, cell / columns, scale);
        if (luma > darkest && luma < brightest) {
            return -1;
        }
        code = code << 1 | (luma >= brightest ? 1 : 0);
    }
    const uint32_t number = code >> 8 & maxNumber;
    return code == codeOf(number) ? static_cast<int>(number) : -1;
}

int read(const QImage& image, double scale)
{
    const QImage rgb = image.convertToFormat(QImage::Format_RGB888);
    return read(rgb.constBits(), rgb.width(), rgb.height(), rgb.bytesPerLine(), scale);
}

} // namespace framecode
