#include "mediareader.h"

#include "framerate.h"
#include "logger.h"
#include "mediafile.h"
#include "mediasource.h"
#include "picturetag.h"

#include <QThread>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/cpu.h>
}

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

constexpr unsigned long fullQueuePauseMs = 1;
constexpr int mostDecoderThreads = 16; // the library advises against more
// Keep the last frame's number within the stream: the end itself would count as one frame more.
constexpr double endGuardSeconds = 0.0001;
constexpr int64_t endGuardMicroseconds = 10;
constexpr double longestSeconds = 1e9; // what damaged headers name beyond it is cut

double ratio(AVRational value)
{
    return value.den != 0 ? static_cast<double>(value.num) / value.den : 0.0;
}

double frameRateOf(const AVStream& stream)
{
    if (isCover(stream)) {
        return usableFrameRate(0.0);
    }
    return usableFrameRate(
        ratio(stream.avg_frame_rate.num != 0 ? stream.avg_frame_rate : stream.r_frame_rate));
}

// One of them is what the whole file comes to, the other the smallest step between pictures.
bool hasConstantRate(const AVStream& stream)
{
    constexpr double tolerance = 0.0005; // of the rate; times can be rounded to milliseconds
    const double average = ratio(stream.avg_frame_rate);
    return average > 0.0 && std::abs(ratio(stream.r_frame_rate) - average) <= tolerance * average;
}

// Release 6.1 gave this data another place and has deprecated the old one since, so that no single
// call does for all.
const uint8_t* displayMatrixData(const AVStream& stream, size_t& size)
{
#if LIBAVCODEC_VERSION_INT >= AV_VERSION_INT(60, 30, 100)
    const AVPacketSideData* data = av_packet_side_data_get(stream.codecpar->coded_side_data,
        stream.codecpar->nb_coded_side_data, AV_PKT_DATA_DISPLAYMATRIX);
    size = data ? data->size : 0;
    return data ? data->data : nullptr;
#else
    return av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, &size);
#endif
}

PictureTurn turnOfStream(const AVStream& stream)
{
    DisplayMatrix matrix{};
    size_t size = 0;
    const uint8_t* data = displayMatrixData(stream, size);
    if (data && size >= sizeof matrix) {
        std::memcpy(matrix.data(), data, sizeof matrix);
    }
    return turnOf(matrix);
}

// Library releases before 6.0 want to be told so; in later ones every callback must be able to.
void allowCallbackOnAnyThread([[maybe_unused]] AVCodecContext& codec)
{
#if LIBAVCODEC_VERSION_MAJOR < 60
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    codec.thread_safe_callbacks = 1;
    QT_WARNING_POP
#endif
}

void warnOfStream(const AVStream& stream, const char* what)
{
    // Of a codec that the library does not know, the file's own mark is all there is to name it by.
    char mark[AV_FOURCC_MAX_STRING_SIZE] = {};
    const AVCodecParameters& codec = *stream.codecpar;
    const char* name = codec.codec_id != AV_CODEC_ID_NONE
        ? avcodec_get_name(codec.codec_id)
        : av_fourcc_make_string(mark, codec.codec_tag);
    Logger::displayWarning(QStringLiteral("No decoder for video stream: %1 (%2)")
                               .arg(QString::fromUtf8(name), QString::fromUtf8(what)));
}

QString errorText(int result)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(result, text, sizeof text);
    return QString::fromUtf8(text);
}

} // namespace

MediaReader::MediaReader(MediaSource* mediaSource)
    : m_source(mediaSource)
{
}

int MediaReader::open()
{
    m_source->audioStreamCount = 0;
    m_source->audioStreamIndex = -1;
    m_source->videoStreamCount = 0;
    m_source->videoStreamIndex = -1;
    int result = openInput();
    if (result >= 0) {
        result = openStreams();
    }
    if (result >= 0) {
        result = describeDuration();
    }
    if (result < 0) {
        Logger::displayError(m_source->filename + QStringLiteral(": ") + errorText(result));
        return result;
    }
    m_source->opened.store(true, std::memory_order_release);
    return 0;
}

int MediaReader::openInput()
{
    // Ahead of the rest: of a long film the index alone takes a while to be read.
    m_source->openingPicture.start(m_source->filename, m_source->abortRequested);
    int error = 0;
    m_source->formatContext = openMediaFile(m_source->filename, m_source->abortRequested, error);
    AVFormatContext* context = m_source->formatContext.get();
    if (!context) {
        return error;
    }
    m_fileSize = avio_size(context->pb);
    return avformat_find_stream_info(context, nullptr);
}

int MediaReader::openStreams()
{
    const AVFormatContext& context = *m_source->formatContext;
    const int streams = static_cast<int>(context.nb_streams);
    for (int i = 0; i < streams; ++i) {
        const AVStream& stream = *context.streams[i];
        const AVMediaType type = stream.codecpar->codec_type;
        m_source->audioStreamCount += type == AVMEDIA_TYPE_AUDIO ? 1 : 0;
        m_source->videoStreamCount += type == AVMEDIA_TYPE_VIDEO ? 1 : 0;
        const bool wanted = (type == AVMEDIA_TYPE_AUDIO && m_source->audioStreamIndex < 0)
            || (type == AVMEDIA_TYPE_VIDEO && m_source->videoStreamIndex < 0 && !isCover(stream));
        if (wanted) {
            static_cast<void>(
                openStream(i)); // a stream that fails is skipped for the next of its kind
        }
    }
    for (int i = 0; i < streams && m_source->videoStreamIndex < 0; ++i) {
        if (isCover(*context.streams[i])) {
            static_cast<void>(openStream(i));
        }
    }
    if (m_source->videoStreamIndex < 0) {
        m_source->frameRate = usableFrameRate(0.0);
    }
    return m_source->audioStreamIndex >= 0 || m_source->videoStreamIndex >= 0 ? 0 : -1;
}

int MediaReader::openStream(int index)
{
    const AVFormatContext* context = m_source->formatContext.get();
    if (!context || index < 0 || index >= static_cast<int>(context->nb_streams)) {
        return -1;
    }
    const AVStream& stream = *context->streams[index];
    const bool isVideo = stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO;
    const AVCodec* decoder = avcodec_find_decoder(stream.codecpar->codec_id);
    AvPtr<AVCodecContext> codec(decoder ? avcodec_alloc_context3(decoder) : nullptr);
    if (!codec || avcodec_parameters_to_context(codec.get(), stream.codecpar) < 0) {
        if (isVideo) {
            warnOfStream(stream, "unknown codec");
        }
        return -1;
    }
    codec->pkt_timebase = stream.time_base;
    if (isVideo) {
        // Each is a picture more to decode before the first one comes; of a cover there is just
        // one.
        codec->thread_count =
            isCover(stream) ? 1 : std::clamp(av_cpu_count(), 1, mostDecoderThreads);
        codec->get_buffer2 = tagPictureBuffer;
        allowCallbackOnAnyThread(*codec);
    }
    const int result = avcodec_open2(codec.get(), decoder, nullptr);
    if (result < 0) {
        if (isVideo) {
            warnOfStream(stream, "the decoder does not open");
        }
        return result;
    }
    switch (codec->codec_type) {
    case AVMEDIA_TYPE_VIDEO:
        return openVideo(index, std::move(codec));
    case AVMEDIA_TYPE_AUDIO:
        return openAudio(index, std::move(codec));
    default:
        return 0;
    }
}

int MediaReader::openVideo(int index, AvPtr<AVCodecContext> codec)
{
    AVStream* stream = m_source->formatContext->streams[index];
    if (!isUsablePictureSize(codec->width, codec->height)) {
        warnOfStream(*stream, "unusable picture size");
        return -1;
    }
    m_source->videoStreamIndex = index;
    m_source->videoStream = stream;
    m_source->isCover = isCover(*stream);
    m_source->width = codec->width;
    m_source->height = codec->height;
    const AVRational aspect =
        av_guess_sample_aspect_ratio(m_source->formatContext.get(), stream, nullptr);
    m_source->turn = turnOfStream(*stream);
    m_source->pixelAspect = pixelAspectOf(aspect.num, aspect.den);
    m_source->frameRate = frameRateOf(*stream);
    m_source->hasConstantRate = hasConstantRate(*stream);
    m_source->videoCodec = std::move(codec);
    return 0;
}

int MediaReader::openAudio(int index, AvPtr<AVCodecContext> codec)
{
    m_source->audioStreamIndex = index;
    m_source->audioStream = m_source->formatContext->streams[index];
    m_source->channels = codec->ch_layout.nb_channels;
    m_source->planar = av_sample_fmt_is_planar(codec->sample_fmt);
    m_source->bytesPerSample = av_get_bytes_per_sample(codec->sample_fmt);
    m_source->sampleRate = codec->sample_rate;
    m_source->audioCodec = std::move(codec);
    return 0;
}

int MediaReader::describeDuration()
{
    const AVFormatContext& context = *m_source->formatContext;
    const AVStream* video = m_source->videoStream;
    const bool hasFrameCount = video && !m_source->isCover && video->nb_frames > 0;
    // A length worked out from the bit rate is a guess, often far off.
    const bool hasDuration = context.duration != AV_NOPTS_VALUE && context.duration > 0
        && context.duration_estimation_method != AVFMT_DURATION_FROM_BITRATE;
    double container = hasDuration ? static_cast<double>(context.duration) / AV_TIME_BASE : 0.0;
    double playable = 0.0;
    if (hasFrameCount) {
        playable = static_cast<double>(video->nb_frames) / m_source->frameRate - endGuardSeconds;
    } else {
        if (!hasDuration) {
            const int result = scanDuration(container);
            if (result < 0) {
                return result;
            }
        }
        playable = container - static_cast<double>(endGuardMicroseconds) / AV_TIME_BASE;
    }
    // Frames are counted in ints.
    const double longest =
        std::min(longestSeconds, std::numeric_limits<int>::max() / 2.0 / m_source->frameRate);
    const auto sane = [longest](double seconds) {
        return std::isfinite(seconds) ? std::clamp(seconds, 0.0, longest) : 0.0;
    };
    m_source->containerDuration = sane(container);
    m_source->playableDuration = sane(playable);
    return 0;
}

int MediaReader::scanDuration(double& seconds)
{
    const bool byPictures = m_source->videoStream && !(m_source->isCover && m_source->audioStream);
    const AVStream& stream = byPictures ? *m_source->videoStream : *m_source->audioStream;
    const double unit = ratio(stream.time_base);
    double first = std::numeric_limits<double>::infinity();
    double end = -first;
    const AvPtr<AVPacket> packet = makePacket();
    while (av_read_frame(m_source->formatContext.get(), packet.get()) >= 0) {
        const int64_t time = packet->pts != AV_NOPTS_VALUE ? packet->pts : packet->dts;
        if (packet->stream_index == stream.index && time != AV_NOPTS_VALUE) {
            const double start = static_cast<double>(time) * unit;
            const double length = packet->duration > 0
                ? static_cast<double>(packet->duration) * unit
                : 1.0 / m_source->frameRate;
            first = std::min(first, start);
            end = std::max(end, start + length);
        }
        av_packet_unref(packet.get());
    }
    seconds = end > first ? end - first : 0.0;
    return m_source->abortRequested ? AVERROR_EXIT : seekToStart();
}

void MediaReader::close()
{
    if (!m_source) {
        return;
    }
    m_source->audioCodec.reset();
    m_source->videoCodec.reset();
    m_source->audioStream = nullptr;
    m_source->videoStream = nullptr;
    m_source->formatContext.reset();
}

bool MediaReader::isInterrupted() const
{
    return m_source->seekRequested.load(std::memory_order_acquire)
        || m_source->abortRequested.load(std::memory_order_relaxed);
}

// Somebody has cut or overwritten it meanwhile. To the library its end is as good as any.
bool MediaReader::hasShrunk() const
{
    if (avio_size(m_source->formatContext->pb) >= m_fileSize) {
        return false;
    }
    Logger::displayError(m_source->filename + QStringLiteral(": the file has become shorter"));
    return true;
}

int MediaReader::readPackets(int maxPackets)
{
    int packetsRead = 0;
    while (!isInterrupted()) {
        AvPtr<AVPacket> packet = makePacket();
        const int result = av_read_frame(m_source->formatContext.get(), packet.get());
        if (result == AVERROR(EAGAIN)) {
            QThread::msleep(fullQueuePauseMs);
            continue;
        }
        if (result < 0) {
            return m_source->abortRequested ? 0 : hasShrunk() ? AVERROR(EIO) : result;
        }
        if (packet->size <= 0) {
            // Nothing to decode; a decoder would take it for the request to drain.
        } else if (packet->stream_index == m_source->audioStreamIndex) {
            deliver(packet, m_source->audioPackets, m_source->soundUnused);
        } else if (packet->stream_index == m_source->videoStreamIndex) {
            deliver(packet, m_source->videoPackets, m_source->videoUnused);
        }
        if (maxPackets >= 1 && ++packetsRead >= maxPackets) {
            return 0;
        }
    }
    return 0;
}

void MediaReader::deliver(
    AvPtr<AVPacket>& packet, PacketQueue& queue, const std::atomic<bool>& unused) const
{
    while (packet && !isInterrupted() && !unused.load(std::memory_order_acquire)) {
        if (!queue.hasRoom()) {
            QThread::msleep(fullQueuePauseMs);
        } else if (queue.put(packet)) {
            return;
        }
    }
}

bool MediaReader::hasRoom() const
{
    return (m_source->soundUnused || m_source->audioPackets.hasRoom())
        && (m_source->videoUnused || m_source->videoPackets.hasRoom());
}

int MediaReader::seek(double seconds)
{
    AVFormatContext* context = m_source->formatContext.get();
    constexpr double latest =
        static_cast<double>(std::numeric_limits<int64_t>::max()) / 2.0 / AV_TIME_BASE;
    const auto target = static_cast<int64_t>(std::clamp(seconds, 0.0, latest) * AV_TIME_BASE);
    int result;
    if (target != 0) {
        result = avformat_seek_file(context, -1, 0, target, target, AVSEEK_FLAG_FRAME);
        if (result < 0) {
            result = av_seek_frame(context, -1, target, AVSEEK_FLAG_BACKWARD);
        }
    } else {
        // From the very start, the first key picture may lie a little after 0.
        const int flags = m_source->clockTime(false) > 0.0 ? AVSEEK_FLAG_BACKWARD : 0;
        result = av_seek_frame(context, -1, 0, flags);
    }
    return result >= 0 ? result : seekToStart();
}

int MediaReader::seekToStart()
{
    AVFormatContext* context = m_source->formatContext.get();
    int result = av_seek_frame(context, -1, 0, AVSEEK_FLAG_BACKWARD);
    if (result < 0 && context->start_time != AV_NOPTS_VALUE) {
        result = av_seek_frame(context, -1, context->start_time, AVSEEK_FLAG_BACKWARD);
    }
    if (result < 0) {
        constexpr int64_t anywhere = std::numeric_limits<int64_t>::max();
        result = avformat_seek_file(context, -1, -anywhere, 0, anywhere, 0);
    }
    if (result < 0) {
        result = av_seek_frame(context, -1, 0, AVSEEK_FLAG_BYTE);
    }
    return result;
}
