#include "script.h"
#include "soundserver.h"

#include <QClipboard>
#include <QSettings>
#include <QTcpSocket>
#include <QtTest>

/// What people, and other programs by the remote control, can ask of the program.
class TestCommands : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void scripts_data();
    void scripts();
    void remoteControl_data();
    void remoteControl();
    void flood_endsOnTheLastFrame();
    void bookmarksMoveWithTheirMedia();

private:
    bool connects(QTcpSocket& client) const
    {
        client.connectToHost(QHostAddress::LocalHost, static_cast<quint16>(m_port));
        return client.waitForConnected();
    }

    const SoundServer m_sound;
    const int m_port = freePort();
};

void TestCommands::scripts_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<bool>("marked"); // which hides the timelines' markers
    const auto add = [](const char* row, const char* script) {
        QTest::newRow(row) << script << false;
    };
    const auto marked = [](const char* row, const char* script) {
        QTest::newRow(row) << script << true;
    };
    // Keys of the window; a second firing would show in what comes next.
    add("steps", "=10 Right =11 Right =12 Left =11 Right*2 =13");
    add("playing",
        "#10 l plays:true l plays:true k plays:false k plays:false space plays:true "
        "space plays:false");
    add("speed",
        "equal speed:1.50 Shift+equal speed:2.00 minus speed:1.50 0 speed:1.00 "
        "minus speed:0.75 9 speed:0.50 8 speed:0.25 minus speed:0.10");
    marked("range",
        "#10 Right*3 #13 i r saved/start:13 Control+Right #50 Left #49 o r saved/end:49 "
        "Home comma r saved/start:1 End period r saved/end:200");
    marked("bookmarks", "#10 Up #20 Up #40 bracketright #60 Down #40 bracketleft #20");
    marked("range bookmarks",
        "#10 Control+Up #5 Control+Up #70 saved/end:90 Control+Up #100 "
        "Control+Down #70 Control+bracketleft #5 Control+bracketright #70");
    marked("marks",
        "#10 saved/frames:20,40,60, f saved/frames:10,20,40,60, r saved/start:10 "
        "Shift+f saved/frames:60, saved/ranges:5,15,5-15;10,50,10-50;70,90,70-90;100,120,100-120");
    marked("clearing",
        "#10 f Control+f saved/frames:20,40,60, Control+Shift+f f saved/frames:10, "
        "r Control+r saved/ranges:5,15,5-15;70,90,70-90;100,120,100-120 "
        "Control+Shift+r r saved/ranges:10,50,10-50");
    marked("no range", "#10 Control+p Control+Right #200 Control+Left #1");
    add("cache", "=10 cached:true Right*5 #15 c cached:false =15");
    add("sizes",
        "#10 1 height:180 2 height:90 3 height:45 Control+2 height:360 Control+Shift+m 1 "
        "height:320");
    add("flip", "=10 turn:0 x turn:mirrored0 y turn:180 x turn:mirrored180 y turn:0");
    add("switches",
        "#10 m t close main/muted:true main/showTimeline:true "
        "main/showRangeTimeline:false");
    add("choices",
        "#10 Control+l Control+Shift+l Control+a Control+Shift+a F6 F3 F2 close "
        "playback/loop:true playback/loopOnStep:true playback/autoplay:true audio/audioScrub:false "
        "main/showBottomToolbar:false main/showRangeTimeline:false main/showTimeline:false");
    add("windows", "#10 F9 @Media_Information @ F10 @Console @ Right #11");
    add("open", "#10 Control+o @Open_File");
    add("open bookmarks", "#10 Control+Shift+o @Open_Bookmarks");
    add("save bookmarks as", "#10 Control+Shift+s @Save_Bookmarks");
    add("copy", "#10 Control+d @Copy_Current_Media");
    // Others.
    add("rotation", "=10 Control+Shift+m turn:90 Control+Shift+n turn:270 Control+Shift+n turn:0");
    add("snapshot", "#10 x turn:mirrored0 x turn:0 Control+c snapshot:10");
    add("scrub", "=10 video down by25 =12 by5 by4 by-19 =11 by400 =51 by-60 =45 up by50 Right =46");
    add("loop on scrub",
        "=10 Control+Alt+l video down by-10 =50 by10 =10 by25 =12 up close "
        "playback/loopOnScrub:true");
    add("settings",
        "#10 1 height:180 Control+k @ #10 main/alwaysOnTop:true Shift+Down close "
        "main/alwaysOnTop:true main/volume:95 again height:180");
    add("preferences, cancelled",
        "#10 Control+Shift+p @Preferences Tab*6 space Tab*2 space Escape "
        "@ #10 Right #11 close preferences/resizeToFit:false "
        "preferences/endlessMouseScrub:true");
    // A command from a menu, from a menu in it, and from one that is made as needed.
    add("menu, about", "#10 menus down up Left Down Return @About_Vantor Escape @ Right #11");
    add("menu, half speed", "#10 menus down up Right*3 Down Return speed:0.50");
    marked("menu, range", "#10 menus down up Left*3 Up Right Down Return #70 r saved/end:90");
    add("preferences",
        "#10 Control+Shift+p @Preferences Tab*7 space Return @ #10 Right #11 "
        "preferences/continuePlayingAfterSeek:false preferences/resizeToFit:false");
}

void TestCommands::scripts()
{
    QFETCH(QString, script);
    QFETCH(bool, marked);
    const Scene scene{ clip("opengop.mp4"), 10, 50 };
    DrivenPlayer player({ { "main/showMenuBar", script.contains("menus") } });
    {
        QSettings marks(bookmarksFile(player), QSettings::IniFormat);
        marks.setValue("main/mediaPath", scene.clip.path);
        marks.setValue("main/frames", "20,40,60,");
        marks.setValue(
            "main/ranges", QStringList{ "5,15,5 - 15", "70,90,70 - 90", "100,120,100 - 120" });
    }
    QVERIFY(player.start({ marked ? bookmarksFile(player) : scene.clip.path, "10", "50" }));
    follow(player, scene, script);
}

// The packets, in which %1 is the clip's path; "+" makes a second client take over.
void TestCommands::remoteControl_data()
{
    QTest::addColumn<QStringList>("packets");
    QTest::addColumn<int>("frame");
    const auto add = [](const char* row, const QStringList& packets, int frame) {
        QTest::newRow(row) << packets << frame;
    };
    const QString open = "file \"%1\" 10 50\n";
    add("quotes", { open }, 10);
    add("several lines in a packet",
        { "file '%1' 5 90\nrstart 10\r\nrend 50\nframe 25\nframe 30.9\n" }, 30);
    add("a line in several packets", { "file \"%1", "\" 10 50\nfra", "me ", "42", "\n" }, 42);
    add("relative", { open, "frameRelative 3\n" }, 12);
    add("before the start", { open, "frame -2147483648\n" }, 1);
    add("after the end", { open, "frame 2000000000\n" }, 200);
    add("exit", { open + "frame 42\nexit\nframe 60\n" }, 42);
    add("a second client", { open, "+", "frame 42\n" }, 42);
    add("a missing file", { open, "file \"%1.mov\"\nframe 42\n" }, 42);
}

void TestCommands::remoteControl()
{
    QFETCH(QStringList, packets);
    QFETCH(int, frame);
    DrivenPlayer player({ { "preferences/tcpPort", m_port } });
    const Scene scene{ player.linked(clip("opengop.mp4"), "with spaces.mp4"), 10, 50 };
    QVERIFY(player.start({}));
    QTcpSocket first;
    QTcpSocket second;
    QTcpSocket* client = &first;
    QVERIFY(connects(first));
    for (const QString& packet : packets) {
        if (packet == "+") {
            client = &second;
            QVERIFY(connects(second));
        } else {
            client->write(
                packet.contains("%1") ? packet.arg(scene.clip.path).toUtf8() : packet.toUtf8());
            QVERIFY(client->waitForBytesWritten());
        }
        QTest::qWait(100); // the next one is one of its own
    }
    if (client == &second) {
        first.write("frame 20\n"); // is left unread
        QVERIFY(first.waitForBytesWritten());
    }
    SHOWS(player, scene, frame);
    QTRY_COMPARE(client->state() == client->UnconnectedState, packets.last().contains("exit"));
    QTRY_COMPARE(player.console().isNull(), !packets.last().contains(".mov"));
    QCOMPARE(client->bytesAvailable(), 0); // nothing is answered
}

void TestCommands::flood_endsOnTheLastFrame()
{
    const Scene scene{ clip("opengop.mp4") };
    DrivenPlayer player({ { "preferences/tcpPort", m_port } });
    QVERIFY(player.start({ scene.clip.path }));
    SHOWS(player, scene, 1);
    QTcpSocket client;
    QVERIFY(connects(client));
    for (int i = 0; i < 20000; ++i) {
        client.write("frame " + QByteArray::number(1 + i * 37 % 150) + '\n');
    }
    client.write("frame 180\n");
    QVERIFY(client.flush());
    player.hold("F9");
    QVERIFY(player.focus("Media Information"));
    SHOWS(player, scene, 180);
}

void TestCommands::bookmarksMoveWithTheirMedia()
{
    DrivenPlayer player;
    Scene scene{ player.linked(clip("opengop.mp4"), "first.mp4"), 12, 16 };
    // Saved over a file that exists already: what is typed into a dialog depends on its focus.
    const QString kept = player.path("kept.bmk");
    {
        QSettings marks(kept, QSettings::IniFormat);
        marks.setValue("main/mediaPath", scene.clip.path);
    }
    QVERIFY(player.start({ kept, "10", "50" }));
    follow(player, scene, "#10 f Right*2 #12 i Right*4 #16 o f r Control+s Right #17 close");
    QDir folder(player.path("."));
    QVERIFY(folder.mkdir("moved"));
    QVERIFY(folder.rename("kept.bmk", "moved/kept.bmk"));
    QVERIFY(folder.rename("first.mp4", "moved/first.mp4"));
    QVERIFY(player.start({ player.path("moved/kept.bmk") }));
    follow(player, scene, "#12 bracketright #16 bracketright #10 Control+Right #16");
    QCOMPARE(player.launchAgain({ "moved/kept.bmk", "5", "9" }), 0); // keeps the keyboard
    follow(player, scene, "#5 bracketright #10 Control+bracketright #12 Shift+f bracketright #10");
}

QTEST_MAIN(TestCommands)
#include "tst_commands.moc"
