#include "drivenplayer.h"
#include "soundserver.h"

#include <QSettings>
#include <QTcpServer>
#include <QtTest>

#include <algorithm>
#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

/// What goes wrong around the program while it runs, from its files to its own sudden end.
class TestFaults : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { m_sound.freeze(false); }
    void files_data();
    void files();
    void soundServer_goesAndComesBack();
    void soundServer_doesNotAnswer();
    void fullDisk_losesNothing();
    void readOnlyHome();
    void portTaken_isTold();
    void kills_leaveSettingsWhole();

private:
    /// Has permissions hold for the player, also where root runs the test, and keeps its log.
    static void prepare(DrivenPlayer& player)
    {
        const QString privileges =
            geteuid() == 0 ? "setpriv --bounding-set=-all --inh-caps=-all" : "";
        const QString script = QString("trap '' XFSZ; exec %1 \"$@\" 2> >(exec tee -a %2 >&2)");
        player.wrap({ "bash", "-c", script.arg(privileges, player.path("log")), "-" });
    }
    static QByteArray bytesOf(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    static QString log(const DrivenPlayer& player) { return bytesOf(player.path("log")); }
    static void shell(const QString& command, const QString& first, const QString& second = {})
    {
        QCOMPARE(QProcess::execute("bash", { "-c", command, "-", first, second }), 0);
    }
    static void limitFiles(const DrivenPlayer& player, rlim_t bytes)
    {
        rlimit limit{ bytes, RLIM_INFINITY };
        QCOMPARE(prlimit(pid_t(player.processId()), RLIMIT_FSIZE, &limit, nullptr), 0);
    }
    static void opensAnother(DrivenPlayer& player)
    {
        const QString name = QString::fromUtf8("Zw\303\266lf \342\202\254.mp4");
        const Scene good{ player.linked(clip("hevc.mp4"), name), 20, 40 };
        QCOMPARE(player.launchAgain({ name, "20", "40" }), 0);
        SHOWS(player, good, 20);
    }

    void playsSound(DrivenPlayer& player, int untilFrame)
    {
        m_sound.startRecording();
        player.hold("space");
        QTRY_VERIFY(player.frame() > untilFrame);
        const auto heard = m_sound.stopRecording();
        QVERIFY(std::any_of(heard.begin(), heard.end(), [](int sample) { return sample > 1000; }));
    }

    SoundServer m_sound;
};

void TestFaults::files_data()
{
    QTest::addColumn<QString>("fault"); // a command; $1 is the file, $2 another
    QTest::addColumn<bool>("harmless"); // to a player that has opened it
    QTest::newRow("deleted") << "rm $1" << true;
    QTest::newRow("unreadable") << "chmod 0 $1" << true;
    QTest::newRow("replaced") << "cp $2 $1.new; mv $1.new $1" << true;
    QTest::newRow("overwritten") << "cp $2 $1" << false;
    QTest::newRow("truncated") << "truncate -s $(($(stat -c %s $1) / 2)) $1" << false;
    QTest::newRow("emptied") << "truncate -s 0 $1" << false;
}

// The file, of one clip forty times, is far longer than what is read in advance.
void TestFaults::files()
{
    QFETCH(QString, fault);
    QFETCH(bool, harmless);
    DrivenPlayer player({ { "preferences/cacheSize", 256 } });
    prepare(player);
    const Clip once = clip("videoonly.mp4");
    const QString film = player.path("film.mp4");
    shell("ffmpeg -v error -stream_loop 39 -i $1 -c copy $2", once.path, film);
    QVERIFY(player.start({ film }));
    QTRY_COMPARE(player.frame(), 1); // ready, which comes after its first picture
    player.hold("space");
    QTRY_VERIFY(player.frame() > 10);
    shell(fault, film, clip("mpeg2.mpg").path);
    const int before = player.frame();
    QTRY_VERIFY(player.frame() > before + 10); // it plays on what it has
    player.hold("End");
    if (harmless) {
        QTRY_COMPARE(player.frame(), once.frameCount * 40);
        QTRY_COMPARE(player.picture(once), once.frameCount);
    } else {
        QCOMPARE(player.consoleText().section('\n', 0, 0), "ERROR: Unknown media error.");
        QVERIFY(log(player).contains(film + ": the file has become shorter"));
    }
    QCOMPARE(player.console().isNull(), harmless);
    opensAnother(player);
    QVERIFY(player.close());
}

void TestFaults::soundServer_goesAndComesBack()
{
    DrivenPlayer player;
    prepare(player);
    const Scene scene{ clip("longgop.mkv") };
    QVERIFY(player.start({ scene.clip.path }));
    SHOWS(player, scene, 1);
    player.hold("space");
    QTRY_VERIFY(player.frame() > 10);
    m_sound.stop();
    const int before = player.frame();
    QTRY_VERIFY(player.frame() > before + 25);
    player.hold("k");
    const int rest = player.awaitRest();
    SHOWS(player, scene, rest);
    QVERIFY(log(player).contains("Sound output: the device has gone"));
    m_sound.start();
    opensAnother(player);
    playsSound(player, 35);
    QVERIFY(player.console().isNull() && player.close());
}

void TestFaults::soundServer_doesNotAnswer()
{
    DrivenPlayer player;
    prepare(player);
    const Scene scene{ clip("longgop.mkv") };
    m_sound.freeze(true);
    QVERIFY(player.start({ scene.clip.path }));
    SHOWS(player, scene, 1);
    QVERIFY(player.consoleText().startsWith("ERROR: Failed to initial audio engine: "));
    QVERIFY(log(player).contains("Sound output: the sound system does not answer"));
    m_sound.freeze(false);
    opensAnother(player);
    QVERIFY(player.focus());
    playsSound(player, 25);
    m_sound.freeze(true);
    QTRY_VERIFY(player.frame() > 37); // the clock is not the sound's alone
    QCOMPARE(player.launchAgain({ scene.clip.path }), 0);
    SHOWS(player, scene, 1);
    QVERIFY(player.close());
}

void TestFaults::fullDisk_losesNothing()
{
    DrivenPlayer player({ { "main/volume", 50 } });
    prepare(player);
    const Scene scene{ clip("opengop.mp4"), 10, 50 };
    const QString marks = player.path("marks.bmk");
    {
        QSettings file(marks, QSettings::IniFormat);
        file.setValue("main/mediaPath", scene.clip.path);
        file.setValue("main/frames", "20,");
    }
    const QByteArray oldMarks = bytesOf(marks);
    const QString settings = player.path(".quillon/vantor.ini");
    const QByteArray oldSettings = bytesOf(settings);
    QVERIFY(player.start({ marks, "10", "50" }));
    QTRY_COMPARE(player.frame(), 10);
    limitFiles(player, 0);
    player.hold("f");
    player.hold("Control+s");
    QCOMPARE(
        player.consoleText().section(" (", 0, 0), "ERROR: Failed to save bookmarks file: " + marks);
    QCOMPARE(bytesOf(marks), oldMarks);
    limitFiles(player, RLIM_INFINITY);
    player.hold("Control+s");
    QTRY_VERIFY(bytesOf(marks).contains("10,20,"));
    limitFiles(player, 0);
    player.hold("Shift+Down");
    QVERIFY(player.close());
    QCOMPARE(bytesOf(settings), oldSettings);
    QVERIFY(log(player).contains("Failed to save settings in " + player.path(".quillon")));
}

void TestFaults::readOnlyHome()
{
    DrivenPlayer player({ { "main/volume", 50 } });
    prepare(player);
    const QString home = player.path(".quillon");
    const QByteArray oldSettings = bytesOf(home + "/vantor.ini");
    shell("chmod -R a-w $1", home);
    const Scene scene{ clip("opengop.mp4"), 10, 50 };
    QVERIFY(player.start(scene.arguments()));
    SHOWS(player, scene, 10);
    player.hold("Control+k"); // which saves them, in a window of another kind
    QCOMPARE(player.consoleText().section(" (", 0, 0), "ERROR: Failed to save settings in " + home);
    SHOWS(player, scene, 10);
    QVERIFY(player.close());
    QCOMPARE(bytesOf(home + "/vantor.ini"), oldSettings);
}

void TestFaults::portTaken_isTold()
{
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress::LocalHost));
    DrivenPlayer player(
        { { "preferences/tcpPort", other.serverPort() }, { "console/displayConsoleOnType", 2 } });
    prepare(player);
    const Scene scene{ clip("opengop.mp4"), 10, 50 };
    QVERIFY(player.start(scene.arguments()));
    SHOWS(player, scene, 10);
    QCOMPARE(player.consoleText().section(" If", 0, 0),
        QString("WARNING: Remote control is off: port %1 cannot be used.").arg(other.serverPort()));
}

void TestFaults::kills_leaveSettingsWhole()
{
    DrivenPlayer player;
    const Scene scene{ clip("opengop.mp4"), 10, 50 };
    for (int delayMs = 0; delayMs < 48; delayMs += 4) {
        QVERIFY(player.start(scene.arguments()));
        player.hold("Control+k"); // which saves them
        QThread::msleep(static_cast<unsigned long>(delayMs));
        QCOMPARE(kill(pid_t(player.processId()), SIGKILL), 0);
        QCOMPARE(player.setting("main/showMenuBar"), QVariant("false"));
        QCOMPARE(player.setting("timeline/timelineShowCache").isValid(), // all of them, or none
            player.setting("console/consoleGeometry").isValid());
    }
    QVERIFY(player.start(scene.arguments()));
    SHOWS(player, scene, 10);
    opensAnother(player);
    QVERIFY(player.close());
}

QTEST_MAIN(TestFaults)
#include "tst_faults.moc"
