#pragma once

#include <QSize>
#include <QString>

#include <cstdint>

/// What is known of the open media at one moment.
struct MediaFigures {
    QString path;
    int lastFrame = 0; // frames count from 1
    double frameRate = 0.0; // frames per second
    double currentTime = 0.0; // seconds
    double duration = 0.0; // seconds
    QSize videoSize; // pixels
    QSize shownSize; // pixels of the picture in the window
    int64_t videoCacheBytes = 0;
    int cachedFrames = 0;
    int64_t audioCacheBytes = 0;
    double cachedStart = 0.0; // seconds
    double cachedEnd = 0.0; // seconds
};

/// The same as it is written for the user.
struct MediaStats {
    QString source;
    QString frameRange;
    QString frameRate;
    QString currentTime;
    QString duration;
    QString normalSize; // empty, like the next one, without a picture
    QString currentSize;
    QString videoCache;
    QString audioCache;
    QString cachedRange;
};

[[nodiscard]] MediaStats mediaStats(const MediaFigures& figures);

/// hh:mm:ss.mmm, with more digits from 100 hours on. What lies beyond the last whole millisecond is
/// cut off; a negative time, or one that is no number, counts as 0.
[[nodiscard]] QString clockText(double seconds);
