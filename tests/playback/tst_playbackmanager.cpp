#include "clips.h"
#include "framecode.h"
#include "playbackrig.h"

#include <QImage>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>

using Manager = PlaybackManager;

class TestPlaybackManager : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void loading_reportsEveryStatusInOrder();
    void playing_endsPausedOnTheLastFrame();
    void playing_isNotStarvedWithoutASoundDevice();
    void soundOnly_withoutADeviceIsNoMedia();
    void aCover_isShownAllTheTime();
    void behindTheLastPicture_itStaysOnShow();
    void steppingBackAfterALaggingPlay_showsEveryFrame();
    void playingAtOnceAfterASeek_showsNothingBeforeTheTarget();
    void positionsFromInsideAStop_areIgnored();
    void pauseWithoutAFile_losesNoName();
    void requestsThatDoNothing();
    void steppingWhileASeekRuns_addsUp();
    void unsupportedName_givesUpTheOpenFile();
    void failedOpen_leavesTheWayFree_data();
    void failedOpen_leavesTheWayFree();
    void newNameWhileLoading_winsAndTheOldOneStaysSilent();
    void loopFromInsideTheEnd_isNotUndone();
    void rotationAndFlip_turnThePicture();
    void pictures_areShownUprightAndInShape_data();
    void pictures_areShownUprightAndInShape();
    void cacheSizeChange_keepsThePosition();
    void valuesAreStoredAsTold();
    void aManagerThatLeavesEarly_data();
    void aManagerThatLeavesEarly();

private:
    static QList<int> values(const QSignalSpy& spy);
};

QList<int> TestPlaybackManager::values(const QSignalSpy& spy)
{
    QList<int> result;
    for (const QList<QVariant>& arguments : spy) {
        result.append(arguments.at(0).toInt());
    }
    return result;
}

void TestPlaybackManager::loading_reportsEveryStatusInOrder()
{
    PlaybackRig rig;
    QSignalSpy statuses(&rig.manager, &Manager::statusChanged);
    QSignalSpy states(&rig.manager, &Manager::stateChanged);
    QVERIFY(rig.open(clip(QStringLiteral("videoonly.mp4")).path));
    QCOMPARE(values(statuses), (QList<int>{ Manager::Loading, Manager::Loaded, Manager::Ready }));
    QCOMPARE(values(states), QList<int>{ Manager::Paused });
    QCOMPARE(rig.shown(), 1);
    QVERIFY(!rig.manager.hasAudio());
    QCOMPARE(rig.manager.videoWidth(), 320);

    statuses.clear();
    rig.manager.stop();
    QVERIFY(rig.waitFor(Manager::NoMedia));
    QCOMPARE(values(statuses), (QList<int>{ Manager::Unloading, Manager::NoMedia }));
    QVERIFY(rig.viewer.pixmap().isNull());
    QCOMPARE(rig.manager.duration(), 0.0);
    QVERIFY(rig.manager.mediaFilename().isEmpty());
}

void TestPlaybackManager::playing_endsPausedOnTheLastFrame()
{
    PlaybackRig rig;
    QVERIFY(rig.open(clip(QStringLiteral("width638.mp4")).path));
    rig.goTo(60);
    QCOMPARE(rig.settledOn(60), 60);
    QSignalSpy statuses(&rig.manager, &Manager::statusChanged);
    rig.manager.play();
    QCOMPARE(rig.manager.state(), Manager::Playing);
    QVERIFY(rig.waitForState(Manager::Paused));
    QCOMPARE(values(statuses), (QList<int>{ Manager::EndOfMedia, Manager::Ready }));
    QCOMPARE(rig.settledOn(75), 75);
    QVERIFY(qAbs(rig.manager.playbackTime() - rig.manager.duration() + 0.0001) < 0.00005);
}

void TestPlaybackManager::playing_isNotStarvedWithoutASoundDevice()
{
    PlaybackRig rig;
    const Clip& longClip = clip(QStringLiteral("longgop.mkv"));
    QVERIFY(longClip.hasAudio && longClip.seconds > 10.0);
    QVERIFY(rig.open(longClip.path));
    rig.manager.setSpeedMultiplier(4.0);
    rig.manager.play();
    QVERIFY(rig.waitForState(Manager::Paused));
    QCOMPARE(rig.settledOn(longClip.frameCount), longClip.frameCount);
}

void TestPlaybackManager::soundOnly_withoutADeviceIsNoMedia()
{
    PlaybackRig rig;
    QSignalSpy errors(&rig.manager, &Manager::error);
    QVERIFY(rig.manager.setMedia(clip(QStringLiteral("soundonly.mp4")).path, 256000000, 0.8F));
    QVERIFY(rig.waitFor(Manager::InvalidMedia));
    QCOMPARE(errors.count(), 2);
    QCOMPARE(errors.at(0).at(1).toString(), QStringLiteral("No audio devices found"));
    QCOMPARE(errors.at(1).at(1).toString(), QStringLiteral("No audio/video streams found."));
    QVERIFY(rig.open(clip(QStringLiteral("mpeg4.avi")).path));
    QCOMPARE(rig.settledOn(1), 1);
}

void TestPlaybackManager::aCover_isShownAllTheTime()
{
    const QTemporaryDir directory;
    const QString picture = directory.filePath(QStringLiteral("cover.png"));
    const QString path = directory.filePath(QStringLiteral("cover.mp4"));
    QImage cover(320, 180, QImage::Format_RGB888);
    cover.fill(Qt::darkGreen);
    framecode::paint(cover, 77);
    QVERIFY(cover.save(picture));
    QCOMPARE(QProcess::execute(QStringLiteral("ffmpeg"),
                 { "-v", "error", "-i", clip(QStringLiteral("soundonly.mp4")).path, "-i", picture,
                     "-map", "0", "-map", "1", "-c:a", "copy", "-c:v", "png", "-disposition:v",
                     "attached_pic", path }),
        0);
    PlaybackRig rig;
    QVERIFY(rig.open(path));
    QCOMPARE(rig.settledOn(77), 77);
    QVERIFY(rig.manager.duration() > 5.9);
    QCOMPARE(rig.manager.frameRate(), 25.0);
    rig.goTo(100);
    QCOMPARE(rig.manager.status(), Manager::Seeking); // the sound has to be found
    QVERIFY(rig.waitFor(Manager::Ready));
    rig.viewer.setPixmap(QPixmap());
    rig.manager.setFlip(false, false);
    QTRY_COMPARE(rig.shown(), 77);
}

void TestPlaybackManager::behindTheLastPicture_itStaysOnShow()
{
    const QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("longsound.mkv"));
    QCOMPARE(QProcess::execute(QStringLiteral("ffmpeg"),
                 { "-v", "error", "-i", clip(QStringLiteral("videoonly.mp4")).path, "-i",
                     clip(QStringLiteral("soundonly.mp4")).path, "-map", "0", "-map", "1", "-c",
                     "copy", path }),
        0);
    PlaybackRig rig;
    QVERIFY(rig.open(path));
    QVERIFY(rig.manager.duration() > 5.5); // the pictures end after 4 s
    rig.goTo(rig.lastFrame(), true);
    QCOMPARE(rig.settledOn(100), 100);
    rig.goTo(99);
    QCOMPARE(rig.settledOn(99), 99);
}

void TestPlaybackManager::steppingBackAfterALaggingPlay_showsEveryFrame()
{
    PlaybackRig rig;
    QVERIFY(rig.open(clip(QStringLiteral("width1366.mp4")).path));
    rig.manager.setCacheSize(0, 0.8F);
    QVERIFY(rig.waitFor(Manager::Ready));
    rig.manager.setSpeedMultiplier(50.0); // faster than any machine decodes
    rig.manager.play();
    QTest::qWait(20);
    rig.manager.pause();
    QVERIFY(rig.waitFor(Manager::Ready));
    for (int frame = 74; frame > 50; --frame) {
        rig.goTo(frame);
        QCOMPARE(rig.settledOn(frame), frame);
    }
}

void TestPlaybackManager::playingAtOnceAfterASeek_showsNothingBeforeTheTarget()
{
    PlaybackRig rig;
    QVERIFY(rig.open(clip(QStringLiteral("longgop.mp4")).path));
    rig.goTo(390, true);
    QCOMPARE(rig.settledOn(390), 390);
    QSet<int> shown;
    connect(&rig.manager, &Manager::playbackTimeChanged, this, [&] { shown.insert(rig.shown()); });
    rig.goTo(240, true);
    QVERIFY(rig.waitFor(Manager::Ready));
    rig.manager.play();
    QTRY_VERIFY(rig.shown() > 250 && rig.shown() < 390);
    rig.manager.pause();
    shown.remove(390); // what was on show before
    QVERIFY(!shown.isEmpty() && *std::min_element(shown.begin(), shown.end()) >= 240);
}

void TestPlaybackManager::positionsFromInsideAStop_areIgnored()
{
    PlaybackRig rig;
    QVERIFY(rig.open(clip(QStringLiteral("vp9.webm")).path));
    connect(&rig.manager, &Manager::statusChanged, this, [&](Manager::Status status) {
        if (status == Manager::Unloading) {
            rig.goTo(30, true);
            rig.manager.setCacheSize(300000000, 0.5F);
        }
    });
    rig.manager.stop();
    QVERIFY(rig.waitFor(Manager::NoMedia));
}

void TestPlaybackManager::pauseWithoutAFile_losesNoName()
{
    PlaybackRig rig;
    rig.manager.pause();
    QVERIFY(rig.open(clip(QStringLiteral("vp9.webm")).path));
    QCOMPARE(rig.settledOn(1), 1);
}

void TestPlaybackManager::requestsThatDoNothing()
{
    PlaybackRig rig;
    QSignalSpy states(&rig.manager, &Manager::stateChanged);
    rig.manager.play();
    rig.manager.seek(false, 1.0, 0.0);
    rig.manager.stop();
    QVERIFY(rig.manager.setMedia(clip(QStringLiteral("prores.mov")).path, 256000000, 0.8F));
    rig.manager.play();
    rig.manager.seek(false, 1.0, 0.0);
    QCOMPARE(rig.manager.status(), Manager::Loading);
    QCOMPARE(states.count(), 0);
    QVERIFY(rig.waitFor(Manager::Ready));
    rig.goTo(40, true);
    QCOMPARE(rig.manager.status(), Manager::Seeking);
    rig.manager.play();
    QCOMPARE(rig.manager.state(), Manager::Paused);
    rig.manager.seek(false, -7.0, 0.0);
    QCOMPARE(rig.settledOn(1), 1);
    rig.manager.play();
    const int before = states.count();
    rig.manager.play();
    QCOMPARE(states.count(), before);
}

void TestPlaybackManager::steppingWhileASeekRuns_addsUp()
{
    PlaybackRig rig;
    QVERIFY(rig.open(clip(QStringLiteral("longgop.mp4")).path));
    rig.goTo(200, true);
    for (int i = 0; i < 10; ++i) {
        const double frame = rig.manager.playbackTime() * rig.manager.frameRate() + 1.0;
        rig.goTo(static_cast<int>(frame) + 1);
    }
    QCOMPARE(rig.manager.status(), Manager::Seeking);
    QCOMPARE(rig.settledOn(210), 210);
}

void TestPlaybackManager::unsupportedName_givesUpTheOpenFile()
{
    PlaybackRig rig;
    QVERIFY(rig.open(clip(QStringLiteral("wmv2.wmv")).path));
    QSignalSpy errors(&rig.manager, &Manager::error);
    QVERIFY(!rig.manager.setMedia(QStringLiteral("/x/clip.txt"), 256000000, 0.8F));
    QCOMPARE(errors.at(0).at(1).toString(), QStringLiteral("Unsupported format: txt"));
    QVERIFY(rig.waitFor(Manager::NoMedia));
    QVERIFY(rig.open(clip(QStringLiteral("wmv2.wmv")).path));
}

void TestPlaybackManager::failedOpen_leavesTheWayFree_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("name");
    QTest::newRow("empty") << QByteArray("") << QStringLiteral("a.mp4");
    QTest::newRow("text") << QByteArray("once upon a time\n").repeated(50)
                          << QStringLiteral("a.mov");
    QTest::newRow("missing") << QByteArray() << QStringLiteral("a.mkv");
}

void TestPlaybackManager::failedOpen_leavesTheWayFree()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, name);
    const QTemporaryDir directory;
    const QString path = directory.filePath(name);
    if (!content.isNull()) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    PlaybackRig rig;
    QSignalSpy errors(&rig.manager, &Manager::error);
    QVERIFY(rig.manager.setMedia(path, 256000000, 0.8F));
    QVERIFY(rig.waitFor(Manager::NoMedia));
    QCOMPARE(errors.count(), 1);
    QCOMPARE(errors.at(0).at(0).toInt(), static_cast<int>(Manager::FormatError));
    QCOMPARE(errors.at(0).at(1).toString(), QStringLiteral("Failed to open media. Invalid file."));
    QVERIFY(rig.open(clip(QStringLiteral("vp9.webm")).path));
    QCOMPARE(rig.settledOn(1), 1);
}

void TestPlaybackManager::newNameWhileLoading_winsAndTheOldOneStaysSilent()
{
    PlaybackRig rig;
    const QString last = clip(QStringLiteral("hevc.mp4")).path;
    QStringList loaded;
    connect(&rig.manager, &Manager::statusChanged, this, [&](Manager::Status status) {
        if (status == Manager::Loaded || status == Manager::Ready) {
            loaded.append(rig.manager.mediaFilename());
        }
    });
    rig.manager.setMedia(clip(QStringLiteral("mpeg2.mpg")).path, 256000000, 0.8F);
    rig.manager.setMedia(clip(QStringLiteral("flv1.flv")).path, 256000000, 0.8F);
    QVERIFY(rig.open(last));
    QCOMPARE(loaded, (QStringList{ last, last }));
    QCOMPARE(rig.settledOn(1), 1);
}

void TestPlaybackManager::loopFromInsideTheEnd_isNotUndone()
{
    PlaybackRig rig;
    QVERIFY(rig.open(clip(QStringLiteral("width1366.mp4")).path));
    rig.goTo(70);
    QCOMPARE(rig.settledOn(70), 70);
    connect(&rig.manager, &Manager::statusChanged, this, [&](Manager::Status status) {
        if (status == Manager::EndOfMedia) {
            rig.goTo(5);
        }
    });
    rig.manager.play();
    QVERIFY(rig.waitForState(Manager::Paused));
    QCOMPARE(rig.settledOn(5), 5);
    QTest::qWait(50);
    QCOMPARE(rig.shown(), 5);
}

void TestPlaybackManager::rotationAndFlip_turnThePicture()
{
    PlaybackRig rig;
    QVERIFY(rig.open(clip(QStringLiteral("videoonly.mp4")).path));
    const QImage upright = rig.viewer.pixmap().toImage();
    rig.manager.setRotation(450);
    QCOMPARE(rig.manager.rotation(), 90);
    QCOMPARE(rig.viewer.pixmap().size(), QSize(180, 320));
    rig.manager.setRotation(-90);
    QCOMPARE(rig.manager.rotation(), -90);
    rig.manager.setRotation(0);
    rig.manager.setFlip(true, true);
    QCOMPARE(rig.viewer.pixmap().toImage(), upright.mirrored(true, true));
    rig.goTo(50, true);
    rig.manager.setFlip(false, false); // while the seek runs
    QCOMPARE(rig.settledOn(50), 50);
}

void TestPlaybackManager::pictures_areShownUprightAndInShape_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("flip"); // horizontally, before the rotation
    QTest::addColumn<int>("rotation");
    QTest::addColumn<QSize>("shown");
    QTest::newRow("stored on its side") << "turned.mp4" << false << 0 << QSize(200, 320);
    QTest::newRow("turned on") << "turned.mp4" << false << 90 << QSize(320, 200);
    QTest::newRow("flipped and turned back") << "turned.mp4" << true << 270 << QSize(320, 200);
    QTest::newRow("upside down") << "turned.mp4" << true << 180 << QSize(200, 320);
    QTest::newRow("wide pixels") << "anamorphic.mp4" << true << 0 << QSize(320, 180);
    QTest::newRow("wide pixels, turned") << "anamorphic.mp4" << false << -90 << QSize(180, 320);
}

void TestPlaybackManager::pictures_areShownUprightAndInShape()
{
    QFETCH(const QString, name);
    QFETCH(const bool, flip);
    QFETCH(const int, rotation);
    QFETCH(const QSize, shown);
    PlaybackRig rig;
    QVERIFY(rig.open(clip(name).path));
    rig.manager.setFlip(flip, false);
    rig.manager.setRotation(rotation);
    QCOMPARE(rig.manager.shownVideoSize(), shown);
    rig.viewer.resize(shown * 2);
    const QImage view = rig.viewer.grab().toImage().transformed(QTransform().rotate(-rotation));
    QCOMPARE(QSize(rig.viewer.imageWidth(), rig.viewer.imageHeight()), shown * 2);
    const QImage painted = view.mirrored(flip, false).scaled(clip(name).width, clip(name).height);
    QCOMPARE(framecode::read(painted), 1);
}

void TestPlaybackManager::cacheSizeChange_keepsThePosition()
{
    PlaybackRig rig;
    QVERIFY(rig.open(clip(QStringLiteral("rate2997.mkv")).path));
    rig.goTo(123);
    QCOMPARE(rig.settledOn(123), 123);
    rig.manager.setCacheSize(400000000, 0.5F);
    QVERIFY(rig.waitFor(Manager::Ready));
    QCOMPARE(rig.settledOn(123), 123);
    QTRY_VERIFY(rig.manager.cacheEndTime() > rig.timeOf(124));
}

void TestPlaybackManager::valuesAreStoredAsTold()
{
    PlaybackRig rig;
    QCOMPARE(rig.manager.playbackTime(), 0.0);
    QCOMPARE(rig.manager.videoWidth(), -1);
    QVERIFY(rig.manager.shownVideoSize().isEmpty());
    QCOMPARE(rig.manager.speedMultiplier(), 1.0);
    rig.manager.setVolume(-5);
    QCOMPARE(rig.manager.volume(), 0);
    rig.manager.setVolume(150);
    QCOMPARE(rig.manager.volume(), 150);
}

void TestPlaybackManager::aManagerThatLeavesEarly_data()
{
    QTest::addColumn<int>("afterMs");
    QTest::newRow("at once") << 0;
    QTest::newRow("while opening") << 5;
    QTest::newRow("while the decoders start") << 30;
    QTest::newRow("when ready") << 500;
}

void TestPlaybackManager::aManagerThatLeavesEarly()
{
    QFETCH(int, afterMs);
    QElapsedTimer leaving;
    {
        PlaybackRig rig;
        rig.manager.setMedia(clip(QStringLiteral("hevc.mp4")).path, 256000000, 0.8F);
        QTest::qWait(afterMs);
        leaving.start();
    }
    QVERIFY(leaving.elapsed()
        < 2000); // it waits at most a tenth of a second; the rest is a loaded machine
}

QTEST_MAIN(TestPlaybackManager)
#include "tst_playbackmanager.moc"
