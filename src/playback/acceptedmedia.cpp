#include "acceptedmedia.h"

#include <QString>

#include <algorithm>
#include <array>

namespace {
constexpr std::array acceptedSuffixes{ "avi", "flv", "m4v", "mkv", "mov", "mp4", "mpeg", "mpeg4",
    "mpg", "webm", "wmv" };
}

bool isAcceptedMedia(const QString& suffix)
{
    return std::any_of(acceptedSuffixes.begin(), acceptedSuffixes.end(), [&](const char* accepted) {
        return suffix.compare(QLatin1String(accepted), Qt::CaseInsensitive) == 0;
    });
}
