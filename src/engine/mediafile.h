#pragma once

#include "avhandles.h"

#include <QString>

#include <atomic>

struct AVStream;

/// Opens a file by what its header says; its streams are not looked at yet. Only regular files are
/// opened, and only as containers of pictures and sound. Once `isAborted` is true, every further
/// call on the result fails soon. Null on failure, with the media library's number in `error`.
[[nodiscard]] AvPtr<AVFormatContext> openMediaFile(
    const QString& filename, std::atomic<bool>& isAborted, int& error);

/// True of the picture that stands for a piece of sound.
[[nodiscard]] bool isCover(const AVStream& stream);

/// True where a converted picture's bytes fit an int, rows padded. Pixels.
[[nodiscard]] bool isUsablePictureSize(int width, int height);
