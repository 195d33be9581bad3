#include "videomanager.h"

#include "mediasource.h"
#include "videodecoder.h"

#include <QMetaType>

namespace {
constexpr int prefillFrames = 9; // more than these and the first picture can be shown at once
constexpr int mostFruitlessCalls =
    500; // before the first picture; about half a second of an empty queue
}

VideoManager::VideoManager(QObject* parent)
    : QObject(parent)
{
    qRegisterMetaType<VideoManager::Error>("VideoManager::Error");
    qRegisterMetaType<VideoManager::Status>("VideoManager::Status");
    qRegisterMetaType<MediaSource*>("MediaSource*");
}

VideoManager::~VideoManager()
{
    letGo();
}

void VideoManager::changeMediaSource(MediaSource* mediaSrc)
{
    letGo();
    if (!mediaSrc || mediaSrc->abortRequested) {
        return;
    }
    m_mediaSource = mediaSrc;
    if (mediaSrc->videoStreamCount == 0 || !mediaSrc->videoStream) {
        setStatus(NoVideo);
        return;
    }
    m_decoder = std::make_unique<VideoDecoder>(mediaSrc, [this] { reportReach(); });
    if (m_decoder->open() < 0) {
        mediaSrc->videoUnused.store(true, std::memory_order_release);
        raise(InitError);
        setStatus(Idle);
        return;
    }
    mediaSrc->videoDecoding.store(true, std::memory_order_release);
    prefill();
    setStatus(Ready);
    startDecoding();
}

// Ends early where the decoder yields nothing, but not before the first picture has fixed where the
// file starts.
void VideoManager::prefill()
{
    int fruitless = 0;
    while (!m_mediaSource->abortRequested
        && m_mediaSource->videoFrames.frameCount() <= prefillFrames && m_status != Ready) {
        const int result = m_decoder->decodeNext();
        if (result == VideoDecoder::endOfStream) {
            return;
        }
        if (result < 0 && (m_decoder->hasPicture() || ++fruitless > mostFruitlessCalls)) {
            return;
        }
    }
}

void VideoManager::startDecoding()
{
    if (m_status == NoVideo || !m_mediaSource || !m_decoder) {
        return;
    }
    while (!m_mediaSource->abortRequested) {
        if (m_decoder->decodeNext() == VideoDecoder::endOfStream) {
            setStatus(EndOfStream);
        }
        reportReach();
    }
}

void VideoManager::reportReach()
{
    const bool reached = m_mediaSource->videoFrames.reaches(m_mediaSource->clockTime(false));
    setStatus(reached ? Ready : Buffering);
    if (m_decoder->takeSkippedNeeded()) {
        Q_EMIT neededPictureSkipped();
    }
}

void VideoManager::stopDecoding()
{
    letGo();
    Q_EMIT released();
}

void VideoManager::letGo()
{
    m_decoder.reset();
    if (m_mediaSource) {
        m_mediaSource->videoDecoding.store(false, std::memory_order_release);
        m_mediaSource->videoFrames.reset();
        m_mediaSource = nullptr;
    }
    setStatus(Idle);
    m_error = NoError;
}

void VideoManager::setStatus(Status status)
{
    if (m_status != status) {
        m_status = status;
        Q_EMIT statusChanged(status);
    }
}

void VideoManager::raise(Error error)
{
    if (m_error != error) {
        m_error = error;
        Q_EMIT this->error(error);
    }
    m_error = NoError;
}
