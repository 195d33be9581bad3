#include "mediastats.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>

namespace {

constexpr double bytesPerMegabyte = 1e6;
constexpr double longestMs = 1e15; // what is longer would not fit into the integer
constexpr qint64 msPerMinute = 60000;
constexpr qint64 msPerHour = 60 * msPerMinute;
constexpr QLatin1Char zero('0');

QString decimals(double value, int count)
{
    return QString::number(value, 'f', count);
}

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(mediaStats)
};

QString sizeText(const QSize& size)
{
    return size.isEmpty()
        ? QString()
        : Texts::tr("%1x%2", "width and height").arg(size.width()).arg(size.height());
}

QString megabytes(int64_t bytes)
{
    return Texts::tr("%1 MB").arg(decimals(static_cast<double>(bytes) / bytesPerMegabyte, 1));
}

} // namespace

QString clockText(double seconds)
{
    const double ms = std::isnan(seconds) ? 0.0 : std::clamp(seconds * 1000.0, 0.0, longestMs);
    const auto whole = static_cast<qint64>(ms);
    return QStringLiteral("%1:%2:%3.%4")
        .arg(whole / msPerHour, 2, 10, zero)
        .arg(whole / msPerMinute % 60, 2, 10, zero)
        .arg(whole / 1000 % 60, 2, 10, zero)
        .arg(whole % 1000, 3, 10, zero);
}

MediaStats mediaStats(const MediaFigures& figures)
{
    MediaStats stats;
    stats.source = figures.path;
    stats.frameRange = Texts::tr("%1 - %2", "from and to").arg(1).arg(figures.lastFrame);
    stats.frameRate = decimals(figures.frameRate, 3);
    stats.currentTime = clockText(figures.currentTime);
    stats.duration = clockText(figures.duration);
    stats.normalSize = sizeText(figures.videoSize);
    stats.currentSize = sizeText(figures.shownSize);
    stats.videoCache = Texts::tr("%1 (%n frames)", "megabytes and", figures.cachedFrames)
                           .arg(megabytes(figures.videoCacheBytes));
    stats.audioCache = megabytes(figures.audioCacheBytes);
    stats.cachedRange = Texts::tr("%1 - %2", "from and to")
                            .arg(decimals(figures.cachedStart, 2), decimals(figures.cachedEnd, 2));
    return stats;
}
