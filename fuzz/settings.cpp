// The settings file: people edit it, and disks damage it.
#include "settings.h"

#include "check.h"
#include "settingsstore.h"
#include "settingstable.h"

#include <QFile>
#include <QTemporaryDir>

namespace {

void checkRepaired(const Settings& values)
{
    check(values.cacheSize >= 256 && values.cacheSize <= 4096, "the cache has a size that works");
    check(values.recentFiles.size() <= values.numRecentFiles
            && values.recentBookmarkFiles.size() <= values.numRecentBookmarkFiles,
        "no more recent files than asked for");
    check(values.tcpPort >= 0 && values.tcpPort <= 65535, "the port is one");
}

// Saves what stands in settings() and loads it again.
void checkSame()
{
    Settings saved = settings();
    check(saveSettings(), "the settings are saved");
    settings() = {};
    loadSettings();
    const std::vector<SettingRow> before = settingRows(saved);
    const std::vector<SettingRow> after = settingRows(settings());
    for (size_t i = 0; i < before.size(); ++i) {
        check(settingForFile(before[i]) == settingForFile(after[i]), before[i].key);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QTemporaryDir home; // the toolkit remembers files by their names
    qputenv("HOME", home.path().toLocal8Bit());
    {
        QFile file(settingsFilePath());
        check(file.open(QIODevice::WriteOnly)
                && file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size))
                    == static_cast<qint64>(size),
            "the input can be laid down");
    }
    settings() = {};
    loadSettings();
    checkRepaired(settings());
    settings().muted = !settings().muted; // so that a file that could not be saved is noticed
    checkSame();
    QFile::remove(settingsFilePath());
    checkSame();
    return 0;
}
