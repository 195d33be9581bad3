#include "settingsstore.h"

#include "inifile.h"
#include "settings.h"
#include "settingstable.h"

#include <QDir>
#include <QSettings>

#include <algorithm>
#include <array>

namespace {

constexpr int minCacheSize = 256;
constexpr int maxCacheSize = 4096;
constexpr int defaultCacheSize = 512;
constexpr int maxRecentFiles = 10;
constexpr int defaultRecentFiles = 5;
constexpr int displayTypeCount = 3;
constexpr unsigned portCount = 65536;
constexpr int defaultTcpPort = 17171;

// The console comes last here, while it is read before the timelines.
constexpr std::array savedGroups = { "main", "file", "playback", "audio", "preferences", "timeline",
    "console" };

QString fileKey(const SettingRow& row)
{
    return QLatin1String(row.group) + QLatin1Char('/') + QLatin1String(row.key);
}

void repairRange(int& value, int lowest, int highest, int replacement)
{
    if (value < lowest || value > highest) {
        value = replacement;
    }
}

void repairDisplayType(int& displayType)
{
    if (displayType >= displayTypeCount) {
        displayType = 0;
    }
}

void trim(QStringList& list, int length)
{
    while (list.size() > length) {
        list.removeLast();
    }
}

void readValues(const QSettings& file, Settings& values)
{
    for (const SettingRow& row : settingRows(values)) {
        assignSetting(row, file.value(fileKey(row)));
    }
}

void writeValues(QSettings& file)
{
    const std::vector<SettingRow> rows = settingRows(settings());
    for (const char* group : savedGroups) {
        for (const SettingRow& row : rows) {
            if (row.saved && qstrcmp(row.group, group) == 0) {
                file.setValue(fileKey(row), settingForFile(row));
            }
        }
    }
}

bool holdsValues(const QSettings& file)
{
    Settings found;
    readValues(file, found);
    const std::vector<SettingRow> foundRows = settingRows(found);
    const std::vector<SettingRow> rows = settingRows(settings());
    return std::equal(rows.begin(), rows.end(), foundRows.begin(),
        [](const SettingRow& left, const SettingRow& right) {
            return settingForFile(left) == settingForFile(right);
        });
}

} // namespace

QString userDirectory()
{
    const QDir directory(QDir::homePath() + QLatin1Char('/') + QLatin1String(userDirectoryName));
    if (!directory.exists()) {
        directory.mkpath(QStringLiteral("."));
    }
    return directory.exists() ? directory.absolutePath() : QString();
}

QString bookmarksDirectory()
{
    const QString parent = userDirectory();
    if (parent.isEmpty()) {
        return QString();
    }
    const QDir directory(parent + QLatin1Char('/') + QLatin1String(bookmarksFolderName));
    if (!directory.exists()) {
        directory.mkpath(QStringLiteral("."));
    }
    return directory.absolutePath();
}

QString settingsFilePath()
{
    const QString directory = userDirectory();
    return directory.isEmpty() ? QString()
                               : directory + QLatin1Char('/') + QLatin1String(settingsFileName);
}

void loadSettings()
{
    // An empty path is a file without keys.
    readValues(QSettings(settingsFilePath(), QSettings::IniFormat), settings());
    validateSettings();
}

void validateSettings()
{
    Settings& values = settings();
    repairRange(values.cacheSize, minCacheSize, maxCacheSize, defaultCacheSize);
    repairRange(values.numRecentFiles, 0, maxRecentFiles, defaultRecentFiles);
    repairRange(values.numRecentBookmarkFiles, 0, maxRecentFiles, defaultRecentFiles);
    trim(values.recentFiles, values.numRecentFiles);
    trim(values.recentBookmarkFiles, values.numRecentBookmarkFiles);
    repairDisplayType(values.timeline.displayType);
    repairDisplayType(values.rangeTimeline.displayType);
    if (static_cast<unsigned>(values.tcpPort) >= portCount) {
        values.tcpPort = defaultTcpPort;
    }
}

bool saveSettings()
{
    return inifile::replace(settingsFilePath(), writeValues, holdsValues);
}
