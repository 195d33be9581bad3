#include "mediasource.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <utility>

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
    return opened.load(std::memory_order_acquire) ? playableDuration : 0.0;
}

double MediaSource::rate() const
{
    return opened.load(std::memory_order_acquire) ? frameRate : -1.0;
}

int MediaSource::videoWidth() const
{
    return opened.load(std::memory_order_acquire) ? width : -1;
}

int MediaSource::videoHeight() const
{
    return opened.load(std::memory_order_acquire) ? height : -1;
}

bool MediaSource::picturesPaceSound() const
{
    return videoStream && !videoUnused && !isCover;
}

double MediaSource::soundReferenceTime()
{
    return picturesPaceSound() ? cachedStartTime() - videoDelay : clockTime(false);
}
