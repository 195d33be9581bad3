#include "avhandles.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

void AvFree::operator()(AVCodecContext* context) const
{
    avcodec_free_context(&context);
}
void AvFree::operator()(AVFormatContext* context) const
{
    avformat_close_input(&context);
}
void AvFree::operator()(AVFrame* frame) const
{
    av_frame_free(&frame);
}
void AvFree::operator()(AVPacket* packet) const
{
    av_packet_free(&packet);
}
void AvFree::operator()(SwrContext* context) const
{
    swr_free(&context);
}
void AvFree::operator()(SwsContext* context) const
{
    sws_freeContext(context);
}

AvPtr<AVPacket> makePacket()
{
    return AvPtr<AVPacket>(av_packet_alloc());
}
AvPtr<AVFrame> makeFrame()
{
    return AvPtr<AVFrame>(av_frame_alloc());
}
