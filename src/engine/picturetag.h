#pragma once

#include <cstdint>

struct AVCodecContext;
struct AVFrame;

/// Buffer callback of the video codec context: the library's own allocation, with a time stamp of 8
/// bytes hung on the picture. The stamp is reference counted and goes with the picture. Any decoder
/// thread.
int tagPictureBuffer(AVCodecContext* context, AVFrame* frame, int flags);

/// The stamp on a picture; the library's "no time" where there is none.
int64_t pictureTag(const AVFrame& frame);
