#include "picturetag.h"

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <cstring>

namespace {
// Process-wide and never written: every picture is tagged "no time", so the time of a picture
// without a decode time comes from the picture before it.
const int64_t currentPacketPts = AV_NOPTS_VALUE;
}

int tagPictureBuffer(AVCodecContext* context, AVFrame* frame, int flags)
{
    const int result = avcodec_default_get_buffer2(context, frame, flags);
    if (result >= 0) {
        av_buffer_unref(&frame->opaque_ref);
        frame->opaque_ref = av_buffer_alloc(sizeof currentPacketPts);
        if (frame->opaque_ref) {
            std::memcpy(frame->opaque_ref->data, &currentPacketPts, sizeof currentPacketPts);
        }
    }
    return result;
}

int64_t pictureTag(const AVFrame& frame)
{
    int64_t tag = AV_NOPTS_VALUE;
    if (frame.opaque_ref && frame.opaque_ref->size == sizeof tag) {
        std::memcpy(&tag, frame.opaque_ref->data, sizeof tag);
    }
    return tag;
}
