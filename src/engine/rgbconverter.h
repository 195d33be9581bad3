#pragma once

#include "avhandles.h"

#include <cstdint>

struct DecodedVideoFrame;

/// Converts decoded pictures to packed RGB24 of one fixed size, rows padded to 4 bytes, honouring
/// the colour matrix and range each picture is tagged with. A picture whose own size or format
/// differs is converted from those. One thread at a time.
class RgbConverter {
public:
    /// Size of the result in pixels.
    RgbConverter(int width, int height);
    ~RgbConverter();
    RgbConverter(const RgbConverter&) = delete;
    RgbConverter& operator=(const RgbConverter&) = delete;

    /// Prepares for pictures of the result's size in `pixelFormat` (the media library's number;
    /// negative: not known yet, decided by the first picture). Negative where there is no
    /// conversion from it.
    [[nodiscard]] int open(int pixelFormat);

    /// Writes every pixel of `target`, which has the result's size. Negative on failure.
    [[nodiscard]] int convert(const AVFrame& source, DecodedVideoFrame& target);

    [[nodiscard]] int rowBytes() const { return m_rowBytes; }
    [[nodiscard]] int pictureBytes() const { return m_rowBytes * m_height; }

private:
    struct Input;
    int prepare(const Input& input);
    int scaleInto(const AVFrame& source, uint8_t* data, int stride);

    const int m_width;
    const int m_height;
    const int m_rowBytes; // padding included
    const std::unique_ptr<Input> m_input; // what m_context converts from
    AvPtr<SwsContext> m_context;
    std::unique_ptr<uint8_t[]>
        m_alignedRows; // for widths whose rows the library cannot write in place
};
