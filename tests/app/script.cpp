#include "script.h"

#include "framecode.h"

#include <QClipboard>
#include <QSettings>
#include <QtTest>

namespace {

constexpr int limitMs = 20000; // for anything; an instrumented build is slow
constexpr int playingMs = 500; // in which a clip that plays shows another frame

// The dialog that changes the speed tells it.
QString speed(DrivenPlayer& player)
{
    player.hold("Control+0");
    QString text = player.textOf("Playback Speed");
    player.hold("Escape");
    player.focus();
    return text;
}

bool plays(const DrivenPlayer& player)
{
    const int before = player.frame();
    return QTest::qWaitFor([&] { return player.frame() != before; }, playingMs);
}

QString saved(DrivenPlayer& player, const QString& key)
{
    QFile file(bookmarksFile(player));
    file.remove();
    player.hold("Control+s");
    static_cast<void>(QTest::qWaitFor([&] { return file.exists(); }, limitMs));
    const auto value = QSettings(file.fileName(), QSettings::IniFormat).value("main/" + key);
    return value.toStringList().join(';').remove(' ');
}

QString observed(DrivenPlayer& player, const Scene& scene, const QString& what)
{
    if (what.startsWith("saved/")) {
        return saved(player, what.section('/', 1));
    }
    if (what.contains('/')) {
        return player.setting(what).toString();
    }
    if (what == "snapshot") {
        const QImage copy = QGuiApplication::clipboard()->image();
        return QString::number(framecode::read(copy, double(copy.width()) / scene.clip.width));
    }
    return what == "speed" ? speed(player)
        : what == "plays"  ? QVariant(plays(player)).toString()
        : what == "turn"   ? player.turn(scene.clip)
        : what == "height" ? QString::number(player.view().height())
        : what == "cached" ? QVariant(player.isCached(scene, scene.first)).toString()
                           : "no such thing";
}

bool movesPointer(DrivenPlayer& player, const Scene& scene, const QString& word)
{
    const int number = word.midRef(word.startsWith("by") ? 2 : 1).toString().remove('^').toInt();
    if (word == "down" || word == "up") {
        player.holdButton(word == "down");
    } else if (word == "video") {
        player.pointAtVideo();
    } else if (word == "menus") {
        player.pointAtMenus();
    } else if (word.startsWith("by")) {
        player.movePointer(number);
    } else if (number > 0 && (word.front() == 'T' || word.front() == 'R')) {
        player.point(word.front() == 'R', scene, number, word.endsWith('^'));
    } else {
        return false;
    }
    return true;
}

} // namespace

QString bookmarksFile(const DrivenPlayer& player)
{
    return player.path("marks.bmk");
}

void follow(DrivenPlayer& player, const Scene& scene, const QString& script)
{
    for (const QString& word : script.split(' ')) {
        const QString rest = word.mid(1);
        if (word.front() == '=') {
            SHOWS(player, scene, rest.toInt());
        } else if (word.front() == '#') {
            QTRY_COMPARE_WITH_TIMEOUT(player.frame(), rest.toInt(), limitMs);
        } else if (word.front() == '@') {
            QVERIFY2(player.focus(QString(rest).replace('_', ' ')), qPrintable(word));
        } else if (word == "close") {
            QVERIFY(player.close());
        } else if (word == "again") {
            QVERIFY(player.start({ scene.clip.path }));
        } else if (word.contains(':')) {
            const QString what = word.section(':', 0, 0);
            QTRY_COMPARE_WITH_TIMEOUT(what + ':' + observed(player, scene, what), word, limitMs);
        } else if (!movesPointer(player, scene, word)) {
            player.hold(word.section('*', 0, 0), qMax(1, word.section('*', 1).toInt()));
        }
    }
}
