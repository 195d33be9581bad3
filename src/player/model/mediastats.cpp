#include "mediastats.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double bytesPerMegabyte = 1'000'000.0;
constexpr double longestMs = 1e15; // what is longer would not fit into the integer
constexpr QLatin1Char zero('0');

QString decimals(double value, int count)
{
    return QString::number(value, 'f', count);
}

QString sizeText(const QSize& size)
{
    return size.isEmpty() ? QString()
                          : QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
}

QString megabytes(int64_t bytes)
{
    return decimals(static_cast<double>(bytes) / bytesPerMegabyte, 1) + QStringLiteral(" MB");
}

} // namespace

QString clockText(double seconds)
{
    const double ms = std::isnan(seconds) ? 0.0 : std::clamp(seconds * 1000.0, 0.0, longestMs);
    const auto whole = static_cast<qint64>(ms);
    return QStringLiteral("%1:%2:%3.%4")
        .arg(whole / 3'600'000, 2, 10, zero)
        .arg(whole / 60'000 % 60, 2, 10, zero)
        .arg(whole / 1000 % 60, 2, 10, zero)
        .arg(whole % 1000, 3, 10, zero);
}

MediaStats mediaStats(const MediaFigures& figures)
{
    MediaStats stats;
    stats.source = figures.path;
    stats.frameRange = QStringLiteral("%1 - %2").arg(1).arg(figures.lastFrame);
    stats.frameRate = decimals(figures.frameRate, 3);
    stats.currentTime = clockText(figures.currentTime);
    stats.duration = clockText(figures.duration);
    stats.normalSize = sizeText(figures.videoSize);
    stats.currentSize = sizeText(figures.shownSize);
    stats.videoCache = megabytes(figures.videoCacheBytes)
        + QStringLiteral(" (%1 frames)").arg(figures.cachedFrames);
    stats.audioCache = megabytes(figures.audioCacheBytes);
    stats.cachedRange = QStringLiteral("%1 - %2").arg(
        decimals(figures.cachedStart, 2), decimals(figures.cachedEnd, 2));
    return stats;
}
