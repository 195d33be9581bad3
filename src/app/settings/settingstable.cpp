#include "settingstable.h"

#include "settings.h"

#include <QStringList>

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

namespace {

bool isBinaryNumber(const QVariant& stored)
{
    const int type = stored.userType();
    return type == QMetaType::Double || type == QMetaType::Float;
}

template <typename T> std::optional<T> convert(const QVariant& stored)
{
    QVariant value = stored;
    if (!value.isValid() || !value.convert(qMetaTypeId<T>())) {
        return std::nullopt;
    }
    return value.value<T>();
}

// The toolkit's own conversion cuts a larger number down to 32 bits, and rounding an infinite one
// is undefined.
template <> std::optional<int> convert(const QVariant& stored)
{
    if (isBinaryNumber(stored)
        && !(std::abs(stored.toDouble()) < std::numeric_limits<int>::max())) {
        return std::nullopt;
    }
    const std::optional<qlonglong> wide = convert<qlonglong>(stored);
    if (!wide || *wide < std::numeric_limits<int>::min()
        || *wide > std::numeric_limits<int>::max()) {
        return std::nullopt;
    }
    return static_cast<int>(*wide);
}

template <> std::optional<float> convert(const QVariant& stored)
{
    const std::optional<double> wide = convert<double>(stored);
    if (!wide || !(std::abs(*wide) <= std::numeric_limits<float>::max())) {
        return std::nullopt;
    }
    return static_cast<float>(*wide);
}

// The shortest text that gives back the same float: 0.8, where going through a double would give
// 0.800000011920929.
QString shortestText(float value)
{
    std::array<char, 32> text{};
    const std::to_chars_result end = std::to_chars(text.begin(), text.end(), value);
    return QString::fromLatin1(text.data(), static_cast<int>(end.ptr - text.data()));
}

} // namespace

std::vector<SettingRow> settingRows(Settings& values)
{
    TimelineDisplay& timeline = values.timeline;
    TimelineDisplay& rangeTimeline = values.rangeTimeline;
    // clang-format off
    return {
        {"main", "windowGeometry", &values.windowGeometry, QByteArray()},
        {"main", "showTimeline", &values.showTimeline, true},
        {"main", "showRangeTimeline", &values.showRangeTimeline, false},
        {"main", "showMenuBar", &values.showMenuBar, true},
        {"main", "showBottomToolbar", &values.showBottomToolbar, true},
        {"main", "volume", &values.volume, 100},
        {"main", "muted", &values.muted, false},
        {"main", "alwaysOnTop", &values.alwaysOnTop, false},

        {"file", "recentFiles", &values.recentFiles, QStringList()},
        {"file", "recentBookmarkFiles", &values.recentBookmarkFiles, QStringList()},

        {"playback", "loop", &values.loop, false},
        {"playback", "loopOnStep", &values.loopOnStep, false},
        {"playback", "loopOnScrub", &values.loopOnScrub, false},
        {"playback", "autoplay", &values.autoplay, false},

        {"audio", "audioScrub", &values.audioScrub, true},

        {"preferences", "cacheSize", &values.cacheSize, 512},
        {"preferences", "cacheTrailingPct", &values.cacheTrailingPct, 0.8F},
        {"preferences", "numRecentFiles", &values.numRecentFiles, 5},
        {"preferences", "numRecentBookmarkFiles", &values.numRecentBookmarkFiles, 5},
        {"preferences", "openMediaInNewPlayers", &values.openMediaInNewPlayers, false},
        {"preferences", "resizeToFit", &values.resizeToFit, true},
        {"preferences", "continuePlayingAfterSeek", &values.continuePlayingAfterSeek, true},
        {"preferences", "endlessMouseScrub", &values.endlessMouseScrub, true},
        {"preferences", "tcpPort", &values.tcpPort, 17171},

        {"console", "consoleGeometry", &values.consoleGeometry, QByteArray()},
        {"console", "displayConsoleOnType", &values.displayConsoleOnType, 1},

        {"timeline", "timelineDisplayType", &timeline.displayType, 0},
        {"timeline", "timelinePositionAtTop", &timeline.positionAtTop, false},
        {"timeline", "timelineShowFrameBookmarks", &timeline.showFrameBookmarks, true},
        {"timeline", "timelineShowRangeBookmarks", &timeline.showRangeBookmarks, true},
        {"timeline", "timelineShowCache", &timeline.showCache, false},
        {"timeline", "rangeTimelineDisplayType", &rangeTimeline.displayType, 0},
        {"timeline", "rangeTimelinePositionAtTop", &rangeTimeline.positionAtTop, true},
        {"timeline", "rangeTimelineShowFrameBookmarks", &rangeTimeline.showFrameBookmarks, true},
        // In the place of the range bookmarks, which the range timeline does not offer, its position is read again.
        {"timeline", "rangeTimelinePositionAtTop", &rangeTimeline.positionAtTop, true, false},
        {"timeline", "rangeTimelineShowCache", &rangeTimeline.showCache, true},
    };
    // clang-format on
}

void assignSetting(const SettingRow& row, const QVariant& stored)
{
    std::visit(
        [&](auto* target) {
            using Value = std::remove_pointer_t<decltype(target)>;
            *target = convert<Value>(stored).value_or(row.defaultValue.value<Value>());
        },
        row.target);
}

QVariant settingForFile(const SettingRow& row)
{
    return std::visit(
        [](const auto* source) {
            if constexpr (std::is_same_v<decltype(source), const float*>) {
                return QVariant(shortestText(*source));
            } else {
                return QVariant::fromValue(*source);
            }
        },
        row.target);
}
