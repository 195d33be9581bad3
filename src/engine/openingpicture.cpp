#include "openingpicture.h"

#include "mediafile.h"
#include "rgbconverter.h"

#include <system_error>
#include <utility>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace {

constexpr int mostReordered = 16; // packets of pictures that may be shown before an earlier one
constexpr int mostPacketsRead = 400; // of all streams

// The one that the reader takes, if its decoder opens.
const AVStream* firstPictures(const AVFormatContext& file)
{
    for (unsigned i = 0; i < file.nb_streams; ++i) {
        const AVStream* stream = file.streams[i];
        if (stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO && !isCover(*stream)) {
            return stream;
        }
    }
    return nullptr;
}

// A field alone is half of the picture that the decoder will show. Release 6.1 has given the mark
// another place.
bool isInterlaced(const AVFrame& frame)
{
#if LIBAVUTIL_VERSION_INT >= AV_VERSION_INT(58, 29, 100)
    return (frame.flags & AV_FRAME_FLAG_INTERLACED) != 0;
#else
    return frame.interlaced_frame != 0;
#endif
}

// Without the end mark it waits for more packets than one.
AvPtr<AVFrame> decodeAlone(const AVStream& stream, const AVPacket& packet)
{
    const AVCodec* decoder = avcodec_find_decoder(stream.codecpar->codec_id);
    const AvPtr<AVCodecContext> codec(decoder ? avcodec_alloc_context3(decoder) : nullptr);
    AvPtr<AVFrame> frame = makeFrame();
    if (!codec || !frame || avcodec_parameters_to_context(codec.get(), stream.codecpar) < 0) {
        return nullptr;
    }
    codec->pkt_timebase = stream.time_base;
    codec->thread_count = 1; // each one more would have its own memory, and nothing to do
    if (avcodec_open2(codec.get(), decoder, nullptr) < 0
        || avcodec_send_packet(codec.get(), &packet) < 0
        || avcodec_send_packet(codec.get(), nullptr) < 0
        || avcodec_receive_frame(codec.get(), frame.get()) < 0) {
        return nullptr;
    }
    constexpr int damaged = AV_FRAME_FLAG_CORRUPT | AV_FRAME_FLAG_DISCARD;
    const bool isWhole =
        (frame->flags & damaged) == 0 && frame->decode_error_flags == 0 && !isInterlaced(*frame);
    return isWhole ? std::move(frame) : nullptr;
}

// The next packet of the stream; null at the end, which leaves AVERROR_EOF, and where `packetsLeft`
// have been read. The other streams are not discarded: within one call the library would read past
// any number of their packets.
AvPtr<AVPacket> nextPacket(
    AVFormatContext& file, const AVStream& stream, int& packetsLeft, int& error)
{
    AvPtr<AVPacket> packet = makePacket();
    error = packet ? 0 : AVERROR(ENOMEM);
    while (error >= 0 && packetsLeft-- > 0) {
        error = av_read_frame(&file, packet.get());
        if (error >= 0 && packet->stream_index == stream.index) {
            return packet;
        }
        av_packet_unref(packet.get());
    }
    return nullptr;
}

// Null where it cannot be told, or where a packet after it has an earlier picture.
AvPtr<AVPacket> packetShownFirst(AVFormatContext& file, const AVStream& stream)
{
    constexpr int unusable = AV_PKT_FLAG_DISCARD | AV_PKT_FLAG_CORRUPT;
    int packetsLeft = mostPacketsRead;
    int error = 0;
    AvPtr<AVPacket> first = nextPacket(file, stream, packetsLeft, error);
    if (!first || first->pts == AV_NOPTS_VALUE || (first->flags & AV_PKT_FLAG_KEY) == 0
        || (first->flags & unusable) != 0) {
        return nullptr;
    }
    for (int i = 0; i < mostReordered; ++i) {
        const AvPtr<AVPacket> later = nextPacket(file, stream, packetsLeft, error);
        if (!later) {
            return error == AVERROR_EOF ? std::move(first) : nullptr;
        }
        if (later->pts == AV_NOPTS_VALUE || later->pts <= first->pts) {
            return nullptr;
        }
    }
    return first;
}

} // namespace

OpeningPicture::~OpeningPicture()
{
    wait();
}

void OpeningPicture::start(const QString& filename, std::atomic<bool>& isAborted)
{
    wait();
    try {
        m_thread = std::thread([this, filename, &isAborted] { work(filename, isAborted); });
    } catch (const std::system_error&) {
        // The system has no thread to give; the decoder's own picture comes all the same.
    }
}

void OpeningPicture::wait()
{
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

void OpeningPicture::work(const QString& filename, std::atomic<bool>& isAborted)
{
    int error = 0;
    const AvPtr<AVFormatContext> file = openMediaFile(filename, isAborted, error);
    const bool isDescribed = file && (file->ctx_flags & AVFMTCTX_NOHEADER) == 0;
    const AVStream* stream = isDescribed ? firstPictures(*file) : nullptr;
    if (!stream) {
        return;
    }
    const AvPtr<AVPacket> packet = packetShownFirst(*file, *stream);
    const AvPtr<AVFrame> frame = packet ? decodeAlone(*stream, *packet) : nullptr;
    if (!frame || isAborted || !isUsablePictureSize(frame->width, frame->height)) {
        return;
    }
    RgbConverter converter(frame->width, frame->height);
    auto picture =
        std::make_unique<DecodedVideoFrame>(converter.pictureBytes(), frame->width, frame->height);
    if (!picture->data || converter.open(frame->format) < 0
        || converter.convert(*frame, *picture) < 0) {
        return;
    }
    const std::lock_guard lock(m_mutex);
    if (!m_isGivenUp) {
        m_picture = std::move(picture);
        m_streamIndex = stream->index;
    }
}

std::unique_ptr<DecodedVideoFrame> OpeningPicture::take(int streamIndex, int width, int height)
{
    const std::lock_guard lock(m_mutex);
    auto picture = std::move(m_picture);
    const bool fits = picture && m_streamIndex == streamIndex && picture->width == width
        && picture->height == height;
    return fits ? std::move(picture) : nullptr;
}

void OpeningPicture::giveUp()
{
    const std::lock_guard lock(m_mutex);
    m_isGivenUp = true;
    m_picture.reset();
}
