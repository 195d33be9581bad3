#include "enginerun.h"

#include "framecode.h"
#include "scopedlock.h"
#include "videodecoder.h"

#include <QThread>
#include <QtGlobal>

#include <limits>
#include <thread>

namespace {
constexpr int64_t cacheBytes = 512000000; // what the player takes unless told otherwise
// Small, so that with the play head at the newest picture there is something to evict in any cache.
constexpr float trailingShare = 0.2F;
constexpr int bytesPerPixel = 3;
constexpr unsigned long fullQueuePauseMs = 1;
constexpr double newest = std::numeric_limits<double>::infinity();
}

EngineRun::EngineRun(const char* path)
    : m_source(QString::fromLocal8Bit(path))
    , m_reader(&m_source)
{
    if (m_reader.open() < 0 || !m_source.videoCodec) {
        qFatal("%s does not open", path);
    }
    m_source.soundUnused = true;
    m_source.videoFrames.setCacheSize(
        cacheBytes, int64_t{ bytesPerPixel } * m_source.width * m_source.height, trailingShare);
    m_decoder = std::make_unique<VideoDecoder>(&m_source);
    if (m_decoder->open() < 0) {
        qFatal("%s cannot be converted", path);
    }
}

EngineRun::~EngineRun() = default;

int EngineRun::decodeAll()
{
    std::thread reader([this] { readAll(); });
    while (m_decoder->decodeNext() != VideoDecoder::endOfStream) {
        followNewest();
    }
    reader.join();
    return newestNumber();
}

void EngineRun::readAll()
{
    static_cast<void>(m_reader.readPackets(0)); // ends with the file
    while (!m_source.videoPackets.hasRoom() || !m_source.videoPackets.putEndOfStream()) {
        QThread::msleep(fullQueuePauseMs);
    }
}

void EngineRun::followNewest()
{
    const ScopedLock lock(m_source.videoFrames.mutex());
    m_source.videoFrames.frameAt(newest);
}

void EngineRun::rewind()
{
    m_source.videoFrames.discarding = true;
    m_source.videoPackets.flush();
    m_source.videoFrames.reset();
    if (m_reader.seekToStart() < 0) {
        qFatal("%s does not seek", qPrintable(m_source.filename));
    }
}

int EngineRun::newestNumber()
{
    const ScopedLock lock(m_source.videoFrames.mutex());
    const DecodedVideoFrame* frame = m_source.videoFrames.frameAt(newest);
    return frame ? framecode::read(
               frame->data.get(), frame->width, frame->height, frame->size / frame->height)
                 : -1;
}
