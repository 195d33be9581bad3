#include "barerun.h"

#include <QThread>
#include <QtGlobal>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/cpu.h>
#include <libavutil/opt.h>
#include <libswscale/swscale.h>
}

#include <algorithm>

namespace {

constexpr int mostConversionThreads = 4; // as the engine
constexpr int unchanged = 1 << 16; // contrast and saturation

void require(bool done, const char* what)
{
    if (!done) {
        qFatal("The bare libraries fail: %s", what);
    }
}

} // namespace

BareRun::BareRun(const char* path)
    : m_packet(makePacket())
    , m_frame(makeFrame())
    , m_rgb(makeFrame())
{
    AVFormatContext* format = nullptr;
    require(avformat_open_input(&format, path, nullptr, nullptr) >= 0, path);
    m_format.reset(format);
    require(avformat_find_stream_info(format, nullptr) >= 0, path);
    const AVCodec* decoder = nullptr;
    m_stream = av_find_best_stream(format, AVMEDIA_TYPE_VIDEO, -1, -1, &decoder, 0);
    require(m_stream >= 0 && decoder, "no video stream");
    m_codec.reset(avcodec_alloc_context3(decoder));
    require(avcodec_parameters_to_context(m_codec.get(), format->streams[m_stream]->codecpar) >= 0,
        path);
    m_codec->thread_count = std::clamp(av_cpu_count(), 1, 16); // as the player's
    require(avcodec_open2(m_codec.get(), decoder, nullptr) >= 0, "open the decoder");
    openConverter();
}

void BareRun::openConverter()
{
    m_rgb->width = m_codec->width;
    m_rgb->height = m_codec->height;
    m_rgb->format = AV_PIX_FMT_RGB24;
    require(av_frame_get_buffer(m_rgb.get(), 0) >= 0, "allocate the picture");
    m_converter.reset(sws_alloc_context());
    void* options = m_converter.get();
    av_opt_set_int(options, "srcw", m_codec->width, 0);
    av_opt_set_int(options, "srch", m_codec->height, 0);
    av_opt_set_int(options, "src_format", m_codec->pix_fmt, 0);
    av_opt_set_int(options, "dstw", m_codec->width, 0);
    av_opt_set_int(options, "dsth", m_codec->height, 0);
    av_opt_set_int(options, "dst_format", AV_PIX_FMT_RGB24, 0);
    av_opt_set_int(options, "sws_flags", SWS_BILINEAR, 0);
    av_opt_set_int(
        options, "threads", std::clamp(QThread::idealThreadCount(), 1, mostConversionThreads), 0);
    require(sws_init_context(m_converter.get(), nullptr, nullptr) >= 0, "open the converter");
    sws_setColorspaceDetails(m_converter.get(), sws_getCoefficients(m_codec->colorspace), 0,
        sws_getCoefficients(SWS_CS_DEFAULT), 1, 0, unchanged, unchanged);
}

int BareRun::decodeAll()
{
    int pictures = 0;
    while (av_read_frame(m_format.get(), m_packet.get()) >= 0) {
        if (m_packet->stream_index == m_stream) {
            require(avcodec_send_packet(m_codec.get(), m_packet.get()) >= 0, "decode");
            pictures += receive();
        }
        av_packet_unref(m_packet.get());
    }
    require(avcodec_send_packet(m_codec.get(), nullptr) >= 0, "drain");
    return pictures + receive();
}

int BareRun::receive()
{
    int pictures = 0;
    while (avcodec_receive_frame(m_codec.get(), m_frame.get()) >= 0) {
        require(sws_scale_frame(m_converter.get(), m_rgb.get(), m_frame.get()) >= 0, "convert");
        av_frame_unref(m_frame.get());
        ++pictures;
    }
    return pictures;
}

void BareRun::rewind()
{
    require(av_seek_frame(m_format.get(), -1, 0, AVSEEK_FLAG_BACKWARD) >= 0, "seek");
    avcodec_flush_buffers(m_codec.get());
}
