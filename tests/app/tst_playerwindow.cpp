#include "script.h"
#include "soundserver.h"

#include <QtTest>

#include <algorithm>
#include <csignal>

namespace {
bool isRedSomewhere(const QImage& picture) // as the word ERROR is
{
    const auto* pixels = reinterpret_cast<const QRgb*>(picture.constBits());
    return std::any_of(pixels, pixels + picture.sizeInBytes() / qsizetype{ sizeof(QRgb) },
        [](QRgb at) { return qRed(at) > 200 && qGreen(at) < 80 && qBlue(at) < 80; });
}
}

/// The program as people use it: started, driven with keys and the pointer, and started again.
class TestPlayerWindow : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void showsTheFrameEverywhere_data();
    void showsTheFrameEverywhere();
    void playsToTheEnd_data();
    void playsToTheEnd();
    void handsOver_data();
    void handsOver();
    void deliversTheLastOfTwoWithinOnePoll();
    void opensAgainAfterAKill();
    void tellsOfAMissingFile();

private:
    const SoundServer m_sound;
};

void TestPlayerWindow::showsTheFrameEverywhere_data()
{
    QTest::addColumn<Scene>("scene");
    QTest::addColumn<QString>("range"); // on the command line
    QTest::addColumn<bool>("loopOnStep");
    QTest::addColumn<QString>("actions");
    const auto add = [](const char* row, const char* name, int first, int last, const char* range,
                         const char* actions, bool loop = false) {
        QTest::newRow(row) << Scene{ clip(name), first, last } << range << loop << actions;
    };
    add("no range", "opengop.mp4", 1, 200, "", "=1 End =200 Left =199");
    add("range", "mpeg4.avi", 10, 50, "10 50", "=10 End =150");
    add("start alone", "prores.mov", 10, 10, "10", "=10 Home =1");
    add("end alone", "rate23976.mp4", 1, 50, "x 50", "=1 End =150");
    add("end beyond", "width638.mp4", 30, 75, "30 999", "=30 End =75");
    const char* steps = "=10 Right*20 =30 Right =31 Left =30 Home =1 Right =2 Left =1";
    const char* loops = "=10 Right*20 =30 Right =10 Left =30 Home =1 Right =10 Left =30";
    add("steps", "hevc.mp4", 10, 30, "10 30", steps);
    add("steps in a loop", "hevc.mp4", 10, 30, "10 30", loops, true);
    const auto drag = [add](const char* row, const char* range, const char* actions, int first,
                          int last) { add(row, "opengop.mp4", first, last, range, actions); };
    const char* all = "T20 down =20 T120 =120 T200 =200 T63 =63 T1 =1 up =1";
    drag("scrubs", "1 200", all, 1, 200);
    drag("scrubs past the range", "100 140", "T20 down =20 T160 =160 T120 =120 up", 100, 140);
    // While the range is dragged its frame has the colour of the markers.
    drag("moves the range", "100 140", "#100 T120 down #120 T90 #90 up T90^ =90", 70, 110);
    drag("moves its start", "100 140", "#100 T100 down T60 #60 up T60^ =60", 60, 140);
    drag("moves its end", "100 140", "#100 T140 down #140 T180 #180 up T180^ =180", 100, 180);
    drag("scrubs closely", "1 200", "R30 down =30 R170 =170 R5 =5 up", 1, 200);
    drag("scrubs the range", "100 140", "=100 R110 down =110 R139 =139 R100 =100 R140 =140", 100,
        140);
}

void TestPlayerWindow::showsTheFrameEverywhere()
{
    QFETCH(Scene, scene);
    QFETCH(QString, range);
    QFETCH(bool, loopOnStep);
    QFETCH(QString, actions);
    DrivenPlayer player({ { "playback/loopOnStep", loopOnStep } });
    QVERIFY(player.start(QStringList(scene.clip.path) + range.split(' ', Qt::SkipEmptyParts)));
    QTRY_VERIFY(player.frame() > 0);
    follow(player, scene, actions);
    QVERIFY(player.close());
    QCOMPARE(player.setting("file/recentFiles").toStringList(), QStringList(scene.clip.path));
}

void TestPlayerWindow::playsToTheEnd_data()
{
    QTest::addColumn<Scene>("scene");
    QTest::addColumn<bool>("loop");
    QTest::addColumn<bool>("autoplay");
    QTest::newRow("of the range") << Scene{ clip("mpeg4.avi"), 21, 50 } << false << false;
    QTest::newRow("of the media") << Scene{ clip("width638.mp4") } << false << true;
    QTest::newRow("of the range, loop") << Scene{ clip("hevc.mp4"), 101, 120 } << true << true;
    QTest::newRow("of the media, loop") << Scene{ clip("width638.mp4") } << true << false;
    QTest::newRow("silent, loop") << Scene{ clip("videoonly.mp4"), 61 } << true << false;
}

void TestPlayerWindow::playsToTheEnd()
{
    QFETCH(Scene, scene);
    QFETCH(bool, loop);
    QFETCH(bool, autoplay);
    DrivenPlayer player({ { "playback/loop", loop }, { "playback/autoplay", autoplay } });
    QVERIFY(player.start(scene.arguments()));
    if (!autoplay) {
        SHOWS(player, scene, scene.first);
        player.hold("space");
    }
    QTRY_VERIFY(player.frame() >= scene.first);
    int before = scene.first;
    QElapsedTimer timer;
    timer.start();
    for (int rounds = 0; rounds < 2 && (loop || before < scene.last); QTest::qWait(1)) {
        const int frame = player.frame();
        QVERIFY2(frame >= scene.first && frame <= scene.last, "it leaves the range");
        QVERIFY2(loop || frame >= before, "it plays backwards");
        QVERIFY2(!timer.hasExpired(20000), "it does not come to the end");
        rounds += frame < before ? 1 : 0;
        before = frame;
    }
    for (const bool again : { false, true }) { // on from there, or again from the start
        if (loop || again) {
            player.hold("space");
        }
        const int rest = player.awaitRest();
        QVERIFY(loop || again || rest == scene.last);
        SHOWS(player, scene, rest);
        player.hold("space");
        QTRY_VERIFY(player.frame() != rest);
    }
}

void TestPlayerWindow::handsOver_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("arguments"); // from the file's folder, apart by |
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    const QString beyond = QString::fromUtf8("Zw\303\266lf \342\202\254.mp4");
    const QString tooLong = QString(150, 'x') + ".mp4";
    QTest::newRow("a file and a range") << "second.mp4"
                                        << "second.mp4|10|50" << 10 << 50;
    QTest::newRow("a name with spaces") << "A second.mp4"
                                        << "A second.mp4|7" << 7 << 7;
    QTest::newRow("a name in pieces") << "A second.mp4"
                                      << "A|second.mp4" << 1 << 200;
    QTest::newRow("a name beyond ASCII") << beyond << beyond + "|10|50" << 10 << 50;
    QTest::newRow("a long name") << tooLong << tooLong + "|10|50" << 10 << 50;
    QTest::newRow("nothing") << ""
                             << "" << 1 << 150;
}

void TestPlayerWindow::handsOver()
{
    QFETCH(QString, name);
    QFETCH(QString, arguments);
    QFETCH(int, first);
    QFETCH(int, last);
    DrivenPlayer player;
    const Scene before{ player.linked(clip("hevc.mp4"), "One in pieces.mp4") };
    QVERIFY(player.start(before.clip.path.split(' ')));
    SHOWS(player, before, 1);
    const Clip second = name.isEmpty() ? before.clip : player.linked(clip("opengop.mp4"), name);
    const Scene after{ second, first, last };
    QCOMPARE(player.launchAgain(arguments.split('|', Qt::SkipEmptyParts)), 0);
    SHOWS(player, after, first);
    player.hold("Right"); // the keyboard is still its own
    SHOWS(player, after, first + 1);
}

void TestPlayerWindow::deliversTheLastOfTwoWithinOnePoll()
{
    const Scene before{ clip("prores.mov") };
    DrivenPlayer player;
    QVERIFY(player.start({ before.clip.path }));
    SHOWS(player, before, 1);
    const Scene lost{ player.linked(clip("mpeg4.avi"), "lost.avi"), 3, 4 };
    const Scene last{ player.linked(clip("hevc.mp4"), "last.mp4"), 20, 40 };
    player.send(SIGSTOP); // one poll for both
    const int codes = player.launchAgain(lost.arguments()) | player.launchAgain(last.arguments());
    player.send(SIGCONT);
    QCOMPARE(codes, 0);
    SHOWS(player, last, 20);
    QVERIFY(player.close());
    const QStringList recent{ last.clip.path, before.clip.path };
    QCOMPARE(player.setting("file/recentFiles").toStringList(), recent);
}

void TestPlayerWindow::opensAgainAfterAKill()
{
    const Scene scene{ clip("opengop.mp4"), 15, 60 };
    const Scene other{ clip("mpeg4.avi"), 5, 9 };
    DrivenPlayer player;
    QVERIFY(player.start(other.arguments()));
    SHOWS(player, other, 5);
    player.send(SIGKILL);
    QVERIFY(player.start(scene.arguments()));
    SHOWS(player, scene, 15);
    QCOMPARE(player.launchAgain(other.arguments()), 0);
    SHOWS(player, other, 5);
}

void TestPlayerWindow::tellsOfAMissingFile()
{
    const Scene scene{ clip("opengop.mp4"), 15, 60 };
    DrivenPlayer player;
    QVERIFY(player.start(scene.arguments()));
    SHOWS(player, scene, 15);
    QCOMPARE(player.launchAgain({ "missing.mp4", "1", "5" }), 0);
    QTRY_VERIFY(isRedSomewhere(player.console()));
    player.hold("Right"); // the keyboard is still the window's
    SHOWS(player, scene, 16);
    QVERIFY(player.close());
    QCOMPARE(player.setting("file/recentFiles").toStringList(), QStringList(scene.clip.path));
}

QTEST_MAIN(TestPlayerWindow)
#include "tst_playerwindow.moc"
