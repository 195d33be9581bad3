#include "mediamanager.h"

#include "mediareader.h"
#include "mediasource.h"

#include <QMetaType>
#include <QThread>

#include <algorithm>

extern "C" {
#include <libavutil/error.h>
}

namespace {

constexpr int readAhead = 100; // packets queued before a load or a seek is reported
constexpr int mostPacketsToLanding =
    2000; // a stream that yields no picture for so long is not waited for
constexpr int mostIdleRounds = 250; // of landingPauseMs, with nothing left to decode
constexpr double firstRetreat = 0.5; // seconds before the target; doubled with every further try
constexpr double framesOfLead = 24.0; // wanted behind the target even where a key picture is nearer
constexpr unsigned long landingPauseMs = 1;
constexpr unsigned long endMarkerPauseMs = 1;

} // namespace

MediaManager::MediaManager(QObject* parent)
    : QObject(parent)
{
    qRegisterMetaType<MediaManager::Error>("MediaManager::Error");
    qRegisterMetaType<MediaManager::Status>("MediaManager::Status");
    qRegisterMetaType<MediaSource*>("MediaSource*");
}

MediaManager::~MediaManager()
{
    letGo();
}

void MediaManager::load(MediaSource* mediaSrc)
{
    setStatus(Loading);
    letGo();
    if (!mediaSrc) {
        return;
    }
    m_mediaSrc = mediaSrc;
    m_endMarked = false;
    m_reader = std::make_unique<MediaReader>(mediaSrc);
    const int opened = mediaSrc->abortRequested ? -1 : m_reader->open();
    if (mediaSrc->abortRequested) {
        return;
    }
    if (opened < 0) {
        setStatus(InvalidMedia);
        raise(OpenError);
        return;
    }
    if (mediaSrc->audioCodec) {
        Q_EMIT soundFound();
    }
    static_cast<void>(
        m_reader->readPackets(readAhead)); // an end or an error met here is met again by read()
    if (!mediaSrc->abortRequested) {
        setStatus(Loaded);
        read();
    }
}

// A file that failed to open is still the source.
bool MediaManager::isOpen() const
{
    return m_mediaSrc && m_mediaSrc->opened;
}

void MediaManager::read()
{
    if (!isOpen()) {
        return;
    }
    setStatus(Reading);
    const int result = m_reader->readPackets(0);
    if (result == 0) {
        return; // a seek or an abort; the call for it is queued behind this one
    }
    if (result != AVERROR_EOF) {
        m_mediaSrc->readFailed.store(true, std::memory_order_release);
        raise(ReadError);
        return;
    }
    offerEndMarkers();
    setStatus(EndOfFile);
}

void MediaManager::offerEndMarkers()
{
    MediaSource& source = *m_mediaSrc;
    bool audioPending = !m_endMarked;
    bool videoPending = !m_endMarked;
    const auto offer = [](PacketQueue& queue, const std::atomic<bool>& unused, bool& pending) {
        pending = pending && !unused && !(queue.hasRoom() && queue.putEndOfStream());
    };
    while (!source.seekRequested && !source.abortRequested) {
        offer(source.audioPackets, source.soundUnused, audioPending);
        offer(source.videoPackets, source.videoUnused, videoPending);
        if (!audioPending && !videoPending) {
            m_endMarked = true;
            return;
        }
        QThread::msleep(endMarkerPauseMs);
    }
}

void MediaManager::seek()
{
    if (!isOpen()) {
        return;
    }
    if (m_mediaSrc->seekRequested.load(std::memory_order_acquire)) {
        // One copy for the file and the clock: whatever is asked for meanwhile belongs to the next
        // seek.
        runSeek(m_mediaSrc->seekTime.load(std::memory_order_relaxed),
            m_mediaSrc->seekReach.load(std::memory_order_relaxed));
    }
    read();
}

void MediaManager::runSeek(double target, double reach)
{
    m_mediaSrc->kept.begin(target - reach, target);
    discardAndFlush(target, true);
    const double lead = std::min(reach, framesOfLead / m_mediaSrc->frameRate);
    const int result = m_reader->seek(target - lead);
    m_mediaSrc->seekRequested.store(false, std::memory_order_release);
    if (m_mediaSrc->abortRequested) {
        return; // of a file given up meanwhile
    }
    if (result < 0) {
        m_mediaSrc->landing.withdraw();
        raise(SeekError);
        return;
    }
    m_mediaSrc->resetClock(target);
    static_cast<void>(m_reader->readPackets(readAhead));
    retreat(target);
    if (!m_mediaSrc->abortRequested) {
        setStatus(Seeked);
    }
}

// Goes back in ever larger steps until the first picture is at or before the target. The first
// picture of the file is taken wherever it starts.
void MediaManager::retreat(double target)
{
    double back = firstRetreat;
    bool atStart = false;
    while (!atStart) {
        const SeekLanding::Verdict verdict = awaitLanding();
        if (verdict != SeekLanding::Verdict::Late && verdict != SeekLanding::Verdict::Ended) {
            return;
        }
        atStart = back >= target;
        discardAndFlush(target, !atStart);
        const int result = atStart ? m_reader->seekToStart() : m_reader->seek(target - back);
        if (result < 0) {
            m_mediaSrc->landing.withdraw();
            return;
        }
        static_cast<void>(m_reader->readPackets(readAhead));
        back *= 2.0;
    }
}

void MediaManager::discardAndFlush(double target, bool judged)
{
    MediaSource& source = *m_mediaSrc;
    // Every flush has a number of its own, counted before the buffers discard.
    const int64_t serial = source.landing.ask(target);
    const bool asks = judged && source.picturesPaceSound() && source.videoDecoding;
    if (!asks) {
        source.landing.withdraw();
    }
    source.videoFrames.discarding = true;
    source.audioFrames.discarding = true;
    source.readFailed.store(false, std::memory_order_release);
    m_endMarked = false;
    source.audioPackets.flush(serial);
    source.videoPackets.flush(serial);
    source.audioFrames.clear();
    source.videoFrames.reset();
}

SeekLanding::Verdict MediaManager::awaitLanding()
{
    MediaSource& source = *m_mediaSrc;
    int packets = 0;
    int idleRounds = 0;
    while (source.landing.verdict() == SeekLanding::Verdict::Pending) {
        if (source.seekRequested || source.abortRequested || !source.videoDecoding
            || packets > mostPacketsToLanding || idleRounds > mostIdleRounds) {
            return source.landing.withdraw();
        }
        if (readWhileWaiting()) {
            ++packets;
        } else {
            QThread::msleep(landingPauseMs);
            // Where an end marker is queued, the decoder always answers.
            const bool runsDry = source.readFailed && source.videoPackets.isEmpty();
            idleRounds = runsDry ? idleRounds + 1 : 0;
        }
    }
    return source.landing.verdict();
}

// The decoder may need more than the first packets to yield a picture. False where nothing more can
// be read now.
bool MediaManager::readWhileWaiting()
{
    if (m_endMarked || m_mediaSrc->readFailed || !m_reader->hasRoom()) {
        return false;
    }
    const int result = m_reader->readPackets(1);
    if (result == AVERROR_EOF) {
        offerEndMarkers();
    } else if (result < 0) {
        m_mediaSrc->readFailed.store(true, std::memory_order_release);
    }
    return result == 0;
}

void MediaManager::unload()
{
    letGo();
    Q_EMIT released();
}

void MediaManager::letGo()
{
    if (m_mediaSrc) {
        m_mediaSrc->audioPackets.clear();
        m_mediaSrc->videoPackets.clear();
        m_mediaSrc = nullptr;
    }
    if (m_reader) {
        m_reader->close();
        m_reader.reset();
    }
    setStatus(NoMedia);
}

void MediaManager::setStatus(Status status)
{
    if (m_status != status) {
        m_status = status;
        Q_EMIT statusChanged(status);
    }
}

void MediaManager::raise(Error error)
{
    m_lastError = error;
    if (m_lastError != NoError) {
        Q_EMIT this->error(m_lastError);
    }
    m_lastError = NoError;
}
