#include "frametext.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr qint64 secondsPerMinute = 60;
constexpr qint64 minutesPerHour = 60;

QString twoDigits(qint64 value)
{
    return QStringLiteral("%1").arg(value, 2, 10, QLatin1Char('0'));
}

QString timeCode(int frame, double frameRate)
{
    // A time code counts whole frames per second, also where the media runs at 29.97 or below 0.5.
    constexpr double highest = std::numeric_limits<int>::max();
    const qint64 rate = std::llround(std::clamp(frameRate, 1.0, highest));
    const qint64 passed = qint64{ frame } - 1;
    const qint64 seconds = passed / rate;
    const qint64 minutes = seconds / secondsPerMinute;
    const qint64 hours = minutes / minutesPerHour;
    const QString shown = QStringLiteral("%1:%2:%3")
                              .arg(twoDigits(minutes % minutesPerHour),
                                  twoDigits(seconds % secondsPerMinute), twoDigits(passed % rate));
    return hours > 0 ? twoDigits(hours) + QLatin1Char(':') + shown : shown;
}

} // namespace

QString frameText(int frame, double frameRate, DISPLAY_TYPE type)
{
    if (!(frameRate > 0.0)) {
        return {};
    }
    if (type == DISPLAY_TYPE::TimeCode) {
        return timeCode(frame, frameRate);
    }
    if (type == DISPLAY_TYPE::Seconds) {
        return QString::number((frame - 1.0) / frameRate, 'f', 2);
    }
    return QString::number(frame);
}
