#include "settings.h"
#include "settingsstore.h"
#include "settingstable.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

namespace {

bool writeFile(const QByteArray& content)
{
    QFile file(settingsFilePath());
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
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
            {"preferences", "cacheSize", "4097", "512"},
            {"preferences", "cacheSize", "4294968320", "512"}, // 1024 in its lower 32 bits
            {"preferences", "cacheSize", "many", "512"},
            {"preferences", "tcpPort", "65536", "17171"},
            {"preferences", "cacheTrailingPct", "nan", "0.8"},
            {"preferences", "cacheTrailingPct", R"(@Variant(\0\0\0\x87?@\0\0))", "0.75"},
            {"preferences", "cacheTrailingPct", R"(@Variant(\0\0\0\x87\x7f\x80\0\0))", "0.8"}, // infinite
            {"main", "volume", "-7", "-7"},
            {"main", "muted", "@Rect(1 2 3 4)", "false"},
            {"timeline", "timelineDisplayType", "3", "0"},
            {"timeline", "rangeTimelineDisplayType", "-1", "-1"},
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
        for (const SettingRow& row : settingRows(settings())) { // all unlike their defaults
            const bool isFlag = std::holds_alternative<bool*>(row.target);
            assignSetting(row, isFlag ? QVariant(!row.defaultValue.toBool()) : "2");
        }
        const QByteArray geometry("\x01\xd9\x00\xff,;\"\n%", 9);
        settings().windowGeometry = geometry;
        settings().cacheSize = 4096;
        settings().tcpPort = 65535;
        settings().cacheTrailingPct = 0.333F;
        settings().recentFiles = QStringList{ "/a, b;c.mp4", "@/\u00e9\u6f22 \"y\".mov" };
        settings().recentBookmarkFiles.clear();
        const Texts saved = texts();
        QVERIFY(saveSettings());
        QFile file(settingsFilePath());
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray text = file.readAll();
        QVERIFY2(text.contains("\ncacheTrailingPct=0.333\n"), text.constData());
        QVERIFY(!text.contains("@Variant"));
        settings() = Settings();
        loadSettings();
        QCOMPARE(texts(), saved);
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

private:
    std::unique_ptr<QTemporaryDir> m_home;
};

QTEST_GUILESS_MAIN(TestSettings)
#include "tst_settings.moc"
