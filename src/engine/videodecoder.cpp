#include "videodecoder.h"

#include "mediasource.h"
#include "picturetag.h"

#include <QThread>

#include <algorithm>
#include <iterator>
#include <limits>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace {

constexpr unsigned long fullCachePauseMs = 1;
constexpr double framesBehindKept =
    3.0; // an older picture is dropped unconverted, if not asked for
constexpr int mostErrorsInARow =
    100; // of one packet; a decoder that only fails must not hold the loop

FrameTimer::Stream timing(const MediaSource& source)
{
    const AVRational base = source.videoStream->time_base;
    return { static_cast<double>(base.num) / base.den, source.frameRate, source.videoDelay,
        source.videoCodec->codec_id == AV_CODEC_ID_VP6F, source.hasConstantRate };
}

// In a file without an index a seek can go amid a group of pictures, and these decoders begin with
// whatever comes.
bool yieldsWhatLacksReferences(const AVCodecContext& codec)
{
    return codec.codec_id == AV_CODEC_ID_HEVC || codec.codec_id == AV_CODEC_ID_MPEG4;
}

} // namespace

static_assert(FrameTimer::noTime == AV_NOPTS_VALUE);

VideoDecoder::VideoDecoder(MediaSource* mediaSource, std::function<void()> waitsForRoom)
    : m_source(mediaSource)
    , m_waitsForRoom(std::move(waitsForRoom))
    , m_frame(makeFrame())
    , m_newestDropped(makeFrame())
    , m_newestTime(MediaSource::nothingDecoded)
    , m_newestSkippedTime(MediaSource::nothingDecoded)
    , m_timer(timing(*mediaSource))
    , m_converter(mediaSource->width, mediaSource->height)
{
}

int VideoDecoder::open()
{
    if (m_initialized || !m_frame || !m_newestDropped
        || m_converter.open(m_source->videoCodec->pix_fmt) < 0) {
        return -1;
    }
    m_initialized = true;
    return 0;
}

int VideoDecoder::decodeNext()
{
    const AvPtr<AVPacket> packet = m_source->videoPackets.get();
    if (!packet) {
        return -1;
    }
    switch (packet->size) {
    case PacketQueue::endOfStreamSize:
        return drain();
    case PacketQueue::flushSize:
        flush(*packet);
        return 0;
    default:
        return decodePacket(*packet);
    }
}

int VideoDecoder::decodePacket(const AVPacket& packet)
{
    m_awaitsKey = m_awaitsKey && (packet.flags & AV_PKT_FLAG_KEY) == 0
        && m_source->landing.isAsked(m_landingSerial);
    if (m_awaitsKey) {
        return 0;
    }
    skipWhatIsNotWanted(packet);
    const int result = avcodec_send_packet(m_source->videoCodec.get(), &packet);
    if (result == AVERROR_EOF) {
        return -1; // drained; only a flush makes it take packets again
    }
    // With several threads an error is that of an older packet; this one is taken all the same.
    m_timer.packetSent(packet.dts);
    receivePictures();
    return result < 0 ? -1 : 0;
}

// A picture that no other one refers to need not be decoded where it would be dropped.
void VideoDecoder::skipWhatIsNotWanted(const AVPacket& packet)
{
    AVCodecContext& codec = *m_source->videoCodec;
    const bool isSafe = codec.codec_id == AV_CODEC_ID_H264 || codec.codec_id == AV_CODEC_ID_HEVC;
    codec.skip_frame = AVDISCARD_DEFAULT;
    if (!isSafe || !m_timer.isRegular() || packet.pts == AV_NOPTS_VALUE || m_judgesLanding
        || m_source->decodesAll) {
        return;
    }
    const double time = m_timer.timeOfOwn(packet.pts);
    if (!isWanted(time)) {
        codec.skip_frame = AVDISCARD_NONREF;
        m_newestSkippedTime = std::max(m_newestSkippedTime, time);
        m_skippedTimes.insert(time);
    }
}

int VideoDecoder::drain()
{
    // An error is that of a picture still in the decoder, and good ones may lie behind it.
    static_cast<void>(avcodec_send_packet(m_source->videoCodec.get(), nullptr));
    receivePictures();
    if (m_newestSkippedTime > m_newestTime) {
        stopSkipping();
    }
    storeNewestDropped();
    m_source->decodedTo = std::numeric_limits<double>::infinity();
    m_source->videoFrames.setEndTime(m_source->containerDuration);
    if (m_judgesLanding) {
        m_judgesLanding = false;
        m_source->landing.answer(m_landingSerial, SeekLanding::Verdict::Ended);
    }
    return endOfStream;
}

void VideoDecoder::flush(const AVPacket& marker)
{
    m_source->decodedTo = MediaSource::nothingDecoded;
    m_source->decodedFrom = -MediaSource::nothingDecoded;
    m_source->stopDiscarding(m_source->videoFrames.discarding, marker.pts);
    m_source->kept.flush();
    m_timer.flush();
    avcodec_flush_buffers(m_source->videoCodec.get());
    av_frame_unref(m_newestDropped.get());
    m_gap = false;
    m_newestTime = MediaSource::nothingDecoded;
    m_newestSkippedTime = MediaSource::nothingDecoded;
    m_skippedTimes.clear();
    m_skippedNeeded = false;
    m_landingSerial = marker.pts;
    m_judgesLanding = m_source->landing.isAsked(m_landingSerial);
    m_awaitsKey = m_judgesLanding && yieldsWhatLacksReferences(*m_source->videoCodec);
    m_skipsToFlush = false;
}

void VideoDecoder::receivePictures()
{
    int errors = 0;
    while (errors < mostErrorsInARow && !m_source->abortRequested) {
        const int result = avcodec_receive_frame(m_source->videoCodec.get(), m_frame.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) {
            return;
        }
        if (result < 0) {
            ++errors; // one damaged picture does not end the rest
            continue;
        }
        errors = 0;
        handlePicture();
        av_frame_unref(m_frame.get());
    }
}

void VideoDecoder::handlePicture()
{
    const double time = m_timer.timeOf(
        { m_frame->pkt_dts, pictureTag(*m_frame), m_frame->pts, m_frame->repeat_pict });
    if (m_source->isCover) {
        convertAndStore(*m_frame, 0.0);
        m_source->videoFrames.setEndTime(m_source->containerDuration);
        return;
    }
    m_newestTime = std::max(m_newestTime, time);
    if (!passesLanding(time)) {
        return;
    }
    if (time < m_source->decodedFrom) {
        m_source->decodedFrom = time;
    }
    m_source->decodedTo = time + 1.0 / m_source->frameRate; // before it can be dropped
    if (isWanted(time)) {
        storeWhatRestsUntil(time);
        convertAndStore(*m_frame, time);
    } else {
        drop(time);
    }
}

bool VideoDecoder::isWanted(double time)
{
    const double recent = m_source->clockTime(false) - framesBehindKept / m_source->frameRate;
    return m_source->kept.keeps(time, recent);
}

// The span in the cache must have no holes: what follows a dropped picture starts a new one.
void VideoDecoder::drop(double time)
{
    m_gap = true;
    m_newestDroppedTime = time;
    av_frame_unref(m_newestDropped.get());
    av_frame_move_ref(m_newestDropped.get(), m_frame.get());
}

// Where the rate varies a picture may rest for long: the one that was dropped before the first one
// ahead of the play head is the one to show there.
void VideoDecoder::storeWhatRestsUntil(double time)
{
    VideoFrameCache& cache = m_source->videoFrames;
    const double clock = m_source->clockTime(false);
    // A new seek says that it discards before it changes the two.
    if (time <= clock || cache.contains(clock) || cache.discarding) {
        return;
    }
    const auto skipped = m_skippedTimes.lower_bound(time);
    if (skipped != m_skippedTimes.begin()
        && (!m_newestDropped->buf[0] || *std::prev(skipped) > m_newestDroppedTime)) {
        stopSkipping();
    } else {
        storeNewestDropped();
    }
}

// A skipped picture is missed. For the rest of the file none is skipped any more: it keeps no rate.
void VideoDecoder::stopSkipping()
{
    m_skippedNeeded = true;
    m_source->decodesAll = true;
}

// Behind the last picture of all, that picture stays on show, however long ago it started.
void VideoDecoder::storeNewestDropped()
{
    if (m_newestDropped->buf[0]) {
        convertAndStore(*m_newestDropped, m_newestDroppedTime);
    }
}

bool VideoDecoder::passesLanding(double time)
{
    if (m_judgesLanding) {
        m_judgesLanding = false;
        const bool late = time > m_source->landing.target() || m_timer.wasGuessed();
        m_skipsToFlush = m_source->landing.answer(m_landingSerial,
                             late ? SeekLanding::Verdict::Late : SeekLanding::Verdict::Landed)
            && late;
    }
    return !m_skipsToFlush;
}

void VideoDecoder::convertAndStore(const AVFrame& frame, double time)
{
    VideoFrameCache& cache = m_source->videoFrames;
    if (cache.discarding) {
        return;
    }
    const auto later = m_skippedTimes.upper_bound(time);
    m_gap = m_gap || later != m_skippedTimes.begin();
    m_skippedTimes.erase(m_skippedTimes.begin(), later);
    if (m_gap) {
        awaitPlayHeadOutsideCache();
    } else {
        awaitRoom(); // before memory is taken for the picture
    }
    if (cache.discarding || m_source->abortRequested) {
        return;
    }
    std::unique_ptr<DecodedVideoFrame> picture =
        cache.obtain(m_converter.pictureBytes(), m_source->width, m_source->height);
    if (!picture || m_converter.convert(frame, *picture) < 0) {
        m_gap = true;
        return;
    }
    picture->time = time;
    if (m_gap) {
        cache.reset();
        m_gap = false;
    }
    av_frame_unref(m_newestDropped.get());
    while (!m_source->abortRequested && !cache.put(picture, 1.0 / m_source->frameRate)) {
        awaitRoom();
    }
}

void VideoDecoder::awaitRoom()
{
    while (
        !m_source->abortRequested && !m_source->videoFrames.hasRoom(m_source->clockTime(false))) {
        pauseForPlayHead();
    }
}

// Pictures were dropped as too late, and then the play head went back to what is cached: to start
// the cache anew would take the picture on show away.
void VideoDecoder::awaitPlayHeadOutsideCache()
{
    VideoFrameCache& cache = m_source->videoFrames;
    while (!m_source->abortRequested && !cache.discarding
        && cache.contains(m_source->clockTime(false))) {
        pauseForPlayHead();
    }
}

void VideoDecoder::pauseForPlayHead()
{
    if (m_waitsForRoom) {
        m_waitsForRoom();
    }
    QThread::msleep(fullCachePauseMs);
}
