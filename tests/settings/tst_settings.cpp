#include "settings.h"
#include "settingsstore.h"
#include "settingstable.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <set>
#include <sys/resource.h>

namespace {

bool writeFile(const QByteArray& content)
{
    QFile file(settingsFilePath());
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QByteArray readFile()
{
    QFile file(settingsFilePath());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

using Texts = QMap<QString, QString>;

// All values as text, so that two states of the settings can be compared.
Texts texts(Settings& values = settings())
{
    Texts result;
    for (const SettingRow& row : settingRows(values)) {
        const QVariant value = settingForFile(row);
        const bool isList = value.userType() == QMetaType::QStringList;
        result[row.key] = isList ? value.toStringList().join('|') : value.toString();
    }
    return result;
}

Texts defaultTexts()
{
    Settings values;
    for (const SettingRow& row : settingRows(values)) {
        assignSetting(row, QVariant());
    }
    return texts(values);
}

void setEverythingElse()
{
    const Texts numbers{ { "cacheSize", "4096" }, { "tcpPort", "65535" },
        { "cacheTrailingPct", "0.333" } };
    for (const SettingRow& row : settingRows(settings())) {
        const bool isFlag = std::holds_alternative<bool*>(row.target);
        assignSetting(
            row, isFlag ? QVariant(!row.defaultValue.toBool()) : numbers.value(row.key, "2"));
    }
    settings().recentFiles = QStringList{ "/a, b;c.mp4", "@/\u00e9\u6f22 \"y\".mov" };
    settings().recentBookmarkFiles.clear();
}

} // namespace

class TestSettings : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_home = std::make_unique<QTemporaryDir>();
        qputenv("HOME", m_home->path().toLocal8Bit());
        settings() = Settings();
    }

    void missingFile_turnsZeroesIntoDefaults()
    {
        const Settings& values = settings();
        QVERIFY(!values.showTimeline && values.volume == 0);
        loadSettings();
        QCOMPARE(texts(), defaultTexts());
        QVERIFY(values.showTimeline && values.volume == 100 && values.cacheTrailingPct == 0.8F);
        QVERIFY(values.rangeTimeline.positionAtTop && !values.timeline.positionAtTop);
        QCOMPARE(settingsFilePath(), m_home->path() + "/.quillon/vantor.ini");
        QCOMPARE(bookmarksDirectory(), m_home->path() + "/.quillon/bookmarks");
        QVERIFY(QDir(bookmarksDirectory()).exists());
    }

    void load_takesOrRepairs()
    {
        // clang-format off
        const struct { const char* group; const char* key; const char* stored; const char* expected; } rows[] = {
            {"preferences", "cacheSize", "255", "512"},
            {"preferences", "cacheSize", "4096", "4096"},
            {"preferences", "cacheSize", "4097", "512"},
            {"preferences", "cacheSize", "99999999999999999999", "512"},
            {"preferences", "cacheSize", "4294968320", "512"}, // 1024 in its lower 32 bits
            {"preferences", "cacheSize", "many", "512"},
            {"preferences", "numRecentFiles", "0", "0"},
            {"preferences", "numRecentFiles", "11", "5"},
            {"preferences", "tcpPort", "65535", "65535"},
            {"preferences", "tcpPort", "65536", "17171"},
            {"preferences", "tcpPort", "-1", "17171"},
            {"preferences", "cacheTrailingPct", "0.25", "0.25"},
            {"preferences", "cacheTrailingPct", "nan", "0.8"},
            {"preferences", "cacheTrailingPct", R"(@Variant(\0\0\0\x87?@\0\0))", "0.75"},
            {"preferences", "cacheTrailingPct", R"(@Variant(\0\0\0\x87\x7f\x80\0\0))", "0.8"}, // infinite
            {"main", "volume", R"(@Variant(\0\0\0\x87\x7f\x80\0\0))", "100"},
            {"main", "volume", "-7", "-7"},
            {"main", "muted", "@Rect(1 2 3 4)", "false"},
            {"timeline", "timelineDisplayType", "2", "2"},
            {"timeline", "timelineDisplayType", "3", "0"},
            {"timeline", "rangeTimelineDisplayType", "-1", "-1"},
            {"timeline", "rangeTimelinePositionAtTop", "false", "false"},
        };
        // clang-format on
        for (const auto& [group, key, stored, expected] : rows) {
            init(); // a file of the same size and time would not be read again
            const QByteArray line = key + QByteArray("=") + stored + "\n";
            QVERIFY(writeFile("[file]\nrecentBookmarkFiles=1, 2, 3, 4, 5, 6\n[" + QByteArray(group)
                + "]\n" + line));
            loadSettings();
            Texts all = defaultTexts();
            all["recentBookmarkFiles"] = "1|2|3|4|5"; // cut to its length
            all[key] = expected;
            QVERIFY2(texts() == all, line);
        }
    }

    void save_isReadBackAndReadable()
    {
        setEverythingElse();
        const QByteArray geometry("\x01\xd9\x00\xff,;\"\n%", 9);
        settings().windowGeometry = geometry;
        const Texts saved = texts();
        QVERIFY(saveSettings());
        const QByteArray file = readFile();
        QVERIFY2(file.contains("\ncacheTrailingPct=0.333\n"), file.constData());
        QVERIFY(!file.contains("@Variant"));
        settings() = Settings();
        loadSettings();
        QCOMPARE(texts(), saved);
        std::set<SettingRow::Target> targets;
        for (const SettingRow& row : settingRows(settings())) {
            QVERIFY2(targets.insert(row.target).second == row.saved, row.key); // one key a value
        }
        QCOMPARE(settings().windowGeometry, geometry);
    }

    void brokenFile_givesDefaultsAndIsReplaced()
    {
        QRandomGenerator random(3);
        QByteArray noise(100000, 0);
        random.fillRange(reinterpret_cast<quint32*>(noise.data()), noise.size() / 4);
        const QByteArray contents[] = { {}, QByteArray(4096, '\0'), noise,
            "[main]\n=1\nvolume\n[[file\n]x=", "[preferences]\ncacheSize=@Variant(\\0\\0",
            "[preferences]\ncacheSize=@Variant(\\0\\0\\0\\f\\xff\\xff\\xff\\xfe)\n" };
        for (const QByteArray& content : contents) {
            init();
            QVERIFY(writeFile(content));
            loadSettings();
            QCOMPARE(texts(), defaultTexts());
            settings().volume = 42;
            QVERIFY(saveSettings());
            loadSettings();
            QCOMPARE(settings().volume, 42);
        }
    }

    void failedWrite_leavesTheOldFile()
    {
        QVERIFY(saveSettings());
        const QByteArray before = readFile();
        QVERIFY(before.size() > 500);
        setEverythingElse();
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit old{};
        QCOMPARE(getrlimit(RLIMIT_FSIZE, &old), 0);
        for (const int room : { 0, 100, before.size() }) { // the new text is longer
            const rlimit limit{ rlim_t(room), old.rlim_max };
            QCOMPARE(setrlimit(RLIMIT_FSIZE, &limit), 0);
            QVERIFY(!saveSettings());
            QCOMPARE(setrlimit(RLIMIT_FSIZE, &old), 0);
            QCOMPARE(readFile(), before);
        }
        QVERIFY(saveSettings());
        QVERIFY(readFile().size() > before.size());
    }

    void noUserDirectory_givesDefaultsAndWritesNowhere()
    {
        QFile obstacle(m_home->filePath(".quillon"));
        QVERIFY(obstacle.open(QIODevice::WriteOnly));
        QDir::setCurrent(m_home->path());
        QCOMPARE(userDirectory() + bookmarksDirectory() + settingsFilePath(), QString());
        loadSettings();
        QCOMPARE(texts(), defaultTexts());
        QVERIFY(!saveSettings());
        const auto everything = QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot;
        QCOMPARE(QDir(m_home->path()).entryList(everything), QStringList({ ".quillon" }));
    }

private:
    std::unique_ptr<QTemporaryDir> m_home;
};

QTEST_GUILESS_MAIN(TestSettings)
#include "tst_settings.moc"
