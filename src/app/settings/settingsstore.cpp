#include "settingsstore.h"

#include "settings.h"
#include "settingstable.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QSettings>
#include <QTemporaryDir>

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

void readFile(const QString& path, Settings& values)
{
    const QSettings file(path, QSettings::IniFormat);
    for (const SettingRow& row : settingRows(values)) {
        assignSetting(row, path.isEmpty() ? QVariant() : file.value(fileKey(row)));
    }
}

void writeDraft(const QString& path)
{
    const std::vector<SettingRow> rows = settingRows(settings());
    QSettings file(path, QSettings::IniFormat); // writes in its destructor
    for (const char* group : savedGroups) {
        for (const SettingRow& row : rows) {
            if (row.saved && qstrcmp(row.group, group) == 0) {
                file.setValue(fileKey(row), settingForFile(row));
            }
        }
    }
}

bool holdsAllSettings(const QString& path)
{
    Settings found;
    readFile(path, found);
    const std::vector<SettingRow> foundRows = settingRows(found);
    const std::vector<SettingRow> rows = settingRows(settings());
    return std::equal(rows.begin(), rows.end(), foundRows.begin(),
        [](const SettingRow& left, const SettingRow& right) {
            return settingForFile(left) == settingForFile(right);
        });
}

// The file's new text, empty when it could not be made. QSettings must not write the file itself:
// it does not notice a full disk and then puts a cut file in the place of the good one. What it has
// written is read back first, under another name because it would answer from its memory.
QByteArray textToSave(const QString& path)
{
    const QTemporaryDir folder;
    const QString draft = folder.filePath(QStringLiteral("draft.ini"));
    QFile checked(folder.filePath(QStringLiteral("checked.ini")));
    // Starting from a copy keeps the keys that other versions have put there.
    if (QFile::exists(path) && !QFile::copy(path, draft)) {
        return QByteArray();
    }
    writeDraft(draft);
    if (!QFile::rename(draft, checked.fileName()) || !holdsAllSettings(checked.fileName())
        || !checked.open(QIODevice::ReadOnly)) {
        return QByteArray();
    }
    return checked.readAll();
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
    readFile(settingsFilePath(), settings());
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

void saveSettings()
{
    const QString path = settingsFilePath();
    if (path.isEmpty()) {
        return;
    }
    const QByteArray text = textToSave(path);
    QSaveFile file(path); // unless committed, the old file stays
    // Flushed by hand, because committing does not look at what its own flush says.
    if (!text.isEmpty() && file.open(QIODevice::WriteOnly) && file.write(text) == text.size()
        && file.flush()) {
        file.commit();
    }
}
