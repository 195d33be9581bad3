#include "clips.h"
#include "playbackmanager.h"
#include "player.h"
#include "settingsstore.h"

#include <QClipboard>
#include <QMenuBar>
#include <QShortcut>
#include <QtTest>

/// Every entry of the menus and every key, whichever there are, in a window without a screen.
class TestMenus : public QObject {
    Q_OBJECT

    std::unique_ptr<Player> m_player;
    QTemporaryDir m_folder;
    QString m_marks = m_folder.filePath("marks.bmk");
    QStringList m_ended; // dialogs that came and were closed, and the window itself

    [[nodiscard]] PlaybackManager& manager() const
    {
        return *m_player->findChild<PlaybackManager*>();
    }
    [[nodiscard]] QVector<QAction*> actions() const // of all menus
    {
        QVector<QAction*> all;
        QList<QAction*> entries = m_player->findChild<QMenuBar*>()->actions();
        while (!entries.isEmpty()) {
            QAction* const entry = entries.takeFirst();
            if (entry->menu()) {
                entries = entry->menu()->actions() + entries;
            } else if (!entry->isSeparator()) {
                all.append(entry);
            }
        }
        return all;
    }
    /// A window at frame 30 in the range from 10 to 50, which bookmarks may lie on.
    void open(bool marked)
    {
        QSettings marks(m_marks, QSettings::IniFormat);
        marks.setValue("main/mediaPath", sampleClipPath());
        marks.setValue("main/frames", marked ? "20,30,40,100," : "20,40,100,");
        QStringList ranges{ "5,15,5 - 15", "60,80,60 - 80" };
        marks.setValue("main/ranges", marked ? ranges << "10,50,10 - 50" : ranges);
        marks.sync();
        m_player.reset();
        QFile::remove(settingsFilePath());
        QSettings values(settingsFilePath(), QSettings::IniFormat);
        values.setValue("file/recentFiles", clip("mpeg4.avi").path);
        values.setValue("console/displayConsoleOnType", 0); // not by itself
        values.sync();
        QGuiApplication::clipboard()->clear();
        m_player = std::make_unique<Player>(m_marks, 10, 50);
        connect(m_player.get(), &Player::closed, this, [this] { m_ended.append("player"); });
        m_player->show();
        QTRY_COMPARE(m_player->windowTitle().section(' ', -1), "10");
        m_player->setSpeedMultiplier(0.7);
        m_player->decreaseVolume();
        m_player->resize(900, 700);
        m_player->setCurrentFrame(30);
        QTRY_COMPARE(m_player->windowTitle().section(' ', -1), "30");
        QTRY_COMPARE(manager().status(), PlaybackManager::Ready);
    }
    /// All that a command can change.
    [[nodiscard]] QString state()
    {
        QString text;
        QDebug out(&text);
        for (const QWidget* window : QApplication::topLevelWidgets()) {
            if (window->isVisible() && window->isWindow()) {
                out << window->windowTitle() << window->windowFlags();
            }
        }
        m_player->saveBookmarksFile();
        static_cast<void>(saveSettings());
        for (const QString& path : { m_marks, settingsFilePath() }) {
            QFile file(path);
            out << (file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray());
        }
        const QImage picture = m_player->grab().toImage();
        out << m_player->size() << m_ended << manager().state() << manager().speedMultiplier()
            << QGuiApplication::clipboard()->image().size()
            << qHash(QByteArray::fromRawData(
                   reinterpret_cast<const char*>(picture.constBits()), int(picture.sizeInBytes())));
        return text;
    }

private Q_SLOTS:
    void entries_actEachInItsWay();
    void keys_fireOnce();
};

void TestMenus::entries_actEachInItsWay()
{
    QTimer closer;
    connect(&closer, &QTimer::timeout, this, [this] {
        if (QWidget* const dialog = QApplication::activeModalWidget()) {
            m_ended.append(dialog->windowTitle());
            dialog->close();
        }
    });
    closer.start(20);
    open(true);
    QMap<QString, QString> namesByEffect;
    for (int entry = 0; entry < actions().size(); ++entry) {
        QString effect;
        for (const bool marked : { true, false }) {
            open(marked);
            m_ended.clear();
            const QString before = state();
            QSettings(m_marks, QSettings::IniFormat).setValue("main/frames", "7,");
            actions().at(entry)->trigger();
            const bool acts = manager().status() != PlaybackManager::Ready;
            QSettings saved(m_marks, QSettings::IniFormat);
            const bool saves = saved.value("main/frames").toString() != "7,";
            QTRY_VERIFY(manager().status() == PlaybackManager::Ready
                || manager().status() == PlaybackManager::NoMedia);
            const QString after = state();
            if (acts || saves || after != before) {
                effect += QString("%1%2%3").arg(marked).arg(acts).arg(saves) + after;
            }
        }
        const QString name = actions().at(entry)->text();
        QVERIFY2(!effect.isEmpty(), qPrintable(name + " does nothing"));
        QVERIFY2(!namesByEffect.contains(effect),
            qPrintable(name + " does the same as " + namesByEffect.value(effect)));
        namesByEffect[effect] = name;
    }
    m_player.reset();
}

void TestMenus::keys_fireOnce()
{
    open(true);
    QStringList fired;
    QSet<QString> keys;
    for (const QShortcut* shortcut : m_player->findChildren<QShortcut*>()) {
        const QString key = shortcut->key().toString();
        shortcut->disconnect(m_player.get());
        connect(shortcut, &QShortcut::activated, this, [&fired, key] { fired += key; });
        keys += key;
    }
    for (const QAction* action : m_player->findChildren<QAction*>()) {
        const QString key = action->shortcut().toString();
        action->disconnect(m_player.get());
        connect(action, &QAction::triggered, this, [&fired, key] { fired += key; });
        keys += key;
    }
    keys -= "";
    m_player->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_player.get()));
    for (const QString& key : qAsConst(keys)) {
        fired.clear();
        QTest::keySequence(m_player.get(), QKeySequence(key));
        QCOMPARE(fired.join(' '), key == "F5" ? "" : key); // F5 is of no menu
    }
    m_player.reset();
}

QTEST_MAIN(TestMenus)
#include "tst_menus.moc"
