#include "mediasource.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <algorithm>
#include <cmath>
#include <utility>

namespace {
// Keeps the last frame's number within the stream: the end itself would count as one frame more.
constexpr double endGuardSeconds = 0.0001;
constexpr int64_t endGuardMicroseconds = 10;
}

MediaSource::MediaSource(QString name)
    : filename(std::move(name))
    , audioScratch(std::make_unique<int16_t[]>(scratchSamples))
{
}

MediaSource::~MediaSource()
{
    audioPackets.clear();
    audioFrames.clear();
    videoPackets.clear();
    videoFrames.reset();
}

double MediaSource::clockTime(bool update)
{
    if (update && playing.load(std::memory_order_relaxed)) {
        return clock.updatedTime();
    }
    return clock.time();
}

double MediaSource::duration() const
{
    if (!opened.load(std::memory_order_acquire) || !formatContext) {
        return 0.0;
    }
    double seconds = scannedDuration;
    if (videoStream && videoStream->nb_frames > 0) {
        seconds = static_cast<double>(videoStream->nb_frames) / frameRate - endGuardSeconds;
    } else if (seconds <= 0.0 && formatContext->duration != AV_NOPTS_VALUE) {
        seconds = static_cast<double>(formatContext->duration - endGuardMicroseconds) / AV_TIME_BASE;
    }
    return std::isfinite(seconds) ? std::max(seconds, 0.0) : 0.0;
}

double MediaSource::containerDuration() const
{
    if (!opened.load(std::memory_order_acquire) || !formatContext
        || formatContext->duration == AV_NOPTS_VALUE) {
        return scannedDuration;
    }
    return static_cast<double>(formatContext->duration) / AV_TIME_BASE;
}

double MediaSource::rate() const { return opened.load(std::memory_order_acquire) ? frameRate : -1.0; }

int MediaSource::videoWidth() const { return opened.load(std::memory_order_acquire) ? width : -1; }

int MediaSource::videoHeight() const { return opened.load(std::memory_order_acquire) ? height : -1; }

double MediaSource::soundReferenceTime()
{
    return videoStream ? cachedStartTime() - videoDelay : clockTime(false);
}
