#include "script.h"
#include "soundserver.h"

#include <QDeadlineTimer>
#include <QtTest>

/// The program as people use it: started, driven with keys and the pointer, and started again.
class TestPlayerWindow : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void showsTheFrameEverywhere_data();
    void showsTheFrameEverywhere();
    void playsToTheEnd_data();
    void playsToTheEnd();

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
    const char* steps = "=10 Right*20 =30 Right =31 Left =30 Home =1 Left =1 Right =2 Left =1 "
                        "End =150 Right =150 Left =149";
    const char* loops = "=10 Right*20 =30 Right =10 Left =30 Home =1 Right =10 Home =1 Left =30 "
                        "End =150 Right =10 End =150 Left =30";
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
    drag("scrubs the range", "100 140", "=100 R110 down =110 R139 =139 R100 =100", 100, 140);
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
    QTest::newRow("range") << Scene{ clip("mpeg4.avi"), 21, 50 } << false << false;
    QTest::newRow("media") << Scene{ clip("width638.mp4") } << false << true;
    QTest::newRow("range, loop") << Scene{ clip("hevc.mp4"), 101, 120 } << true << true;
    QTest::newRow("silent media, loop") << Scene{ clip("videoonly.mp4"), 61 } << true << false;
}

void TestPlayerWindow::playsToTheEnd()
{
    QFETCH(Scene, scene);
    QFETCH(bool, loop);
    QFETCH(bool, autoplay);
    DrivenPlayer player({ { "playback/loop", loop }, { "playback/autoplay", autoplay },
        { "preferences/continuePlayingAfterSeek", !autoplay } });
    QVERIFY(player.start(scene.arguments()));
    if (!autoplay) {
        SHOWS(player, scene, scene.first);
        player.hold("space");
    }
    QTRY_VERIFY(player.frame() >= scene.first);
    int before = scene.first;
    const QDeadlineTimer limit(20000);
    for (int rounds = 0; rounds < 2 && (loop || before < scene.last); QTest::qWait(1)) {
        const int frame = player.frame();
        QVERIFY2(frame >= scene.first && frame <= scene.last, "it leaves the range");
        QVERIFY2(loop || frame >= before, "it plays backwards");
        QVERIFY2(!limit.hasExpired(), "it does not come to the end");
        rounds += frame < before ? 1 : 0;
        before = frame;
    }
    if (loop) {
        player.hold("space");
    }
    const int rest = player.awaitRest();
    QVERIFY(loop || rest == scene.last);
    SHOWS(player, scene, rest);
    player.hold("space"); // on from there, or again from the start
    QTRY_VERIFY(player.frame() != rest);
}

QTEST_MAIN(TestPlayerWindow)
#include "tst_playerwindow.moc"
