#include "mediasource.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <algorithm>
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
    return update ? clock.updatedTimeIf(playing) : clock.time();
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

void MediaSource::stopDiscarding(std::atomic<bool>& discarding, int64_t markerSerial) const
{
    // The demuxer counts its seek before it sets the flag, so one that was overwritten here is
    // seen.
    discarding = false;
    if (landing.serial() != markerSerial) {
        discarding = true;
    }
}

bool MediaSource::picturesPaceSound() const
{
    return videoStream && !videoUnused && !isCover;
}

double MediaSource::soundReferenceTime()
{
    return picturesPaceSound() ? cachedStartTime() - videoDelay : clockTime(false);
}

double MediaSource::soundNeededTime()
{
    return std::max(clockTime(false), picturesPaceSound() ? cachedEndTime() : 0.0);
}

bool MediaSource::soundMayWait() const
{
    return !picturesPaceSound() || videoFrames.isComplete() || videoPackets.usedSlots() > 0;
}
