#include "clips.h"
#include "framecode.h"
#include "playbackrig.h"

#include <QImage>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>

using Manager = PlaybackManager;

namespace {

QList<int> values(const QSignalSpy& spy)
{
    QList<int> result;
    for (const QList<QVariant>& arguments : spy) {
        result.append(arguments.at(0).toInt());
    }
    return result;
}

} // namespace

class TestPlaybackManager : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void loadingPlayingAndStopping_reportEveryStatusInOrder()
    {
        PlaybackRig rig;
        QSignalSpy statuses(&rig.manager, &Manager::statusChanged);
        QSignalSpy states(&rig.manager, &Manager::stateChanged);
        const auto statusesSince = [&statuses] {
            const QList<int> seen = values(statuses);
            statuses.clear();
            return seen;
        };
        QVERIFY(rig.open("videoonly.mp4"));
        QCOMPARE(
            statusesSince(), (QList<int>{ Manager::Loading, Manager::Loaded, Manager::Ready }));
        QCOMPARE(values(states), QList<int>{ Manager::Paused });
        QVERIFY(rig.shown() == 1 && !rig.manager.hasAudio());

        QCOMPARE(rig.visit(85), 85);
        statuses.clear();
        rig.manager.play();
        QCOMPARE(rig.manager.state(), Manager::Playing);
        QVERIFY(rig.waitForState(Manager::Paused));
        QCOMPARE(statusesSince(), (QList<int>{ Manager::EndOfMedia, Manager::Ready }));
        QCOMPARE(rig.settledOn(100), 100);
        QVERIFY(qAbs(rig.manager.playbackTime() - rig.manager.duration() + 0.0001) < 0.00005);

        statuses.clear();
        rig.manager.stop();
        QVERIFY(rig.waitFor(Manager::NoMedia));
        QCOMPARE(statusesSince(), (QList<int>{ Manager::Unloading, Manager::NoMedia }));
        QVERIFY(rig.viewer.pixmap().isNull() && rig.manager.mediaFilename().isEmpty());
        QCOMPARE(rig.manager.duration(), 0.0);
    }

    void playing_isNotStarvedWithoutASoundDevice()
    {
        PlaybackRig rig;
        QVERIFY(rig.open("longgop.mkv")); // whose sound fills its queue long before the end
        rig.manager.setSpeedMultiplier(4.0);
        rig.manager.play();
        QVERIFY(rig.waitForState(Manager::Paused));
        QCOMPARE(rig.settledOn(400), 400);
    }

    void soundOnly_withoutADeviceIsNoMedia()
    {
        PlaybackRig rig;
        QSignalSpy errors(&rig.manager, &Manager::error);
        QVERIFY(rig.request("soundonly.mp4") && rig.waitFor(Manager::InvalidMedia));
        QCOMPARE(errors.count(), 2);
        QCOMPARE(errors.at(0).at(1).toString(), "No audio devices found");
        QCOMPARE(errors.at(1).at(1).toString(), "No audio/video streams found.");
        QVERIFY(rig.open("mpeg4.avi"));
        QCOMPARE(rig.settledOn(1), 1);
    }

    void aCover_isShownAllTheTime()
    {
        const QTemporaryDir folder;
        const QString picture = folder.filePath("cover.png");
        const QString path = folder.filePath("cover.mp4");
        QImage cover(320, 180, QImage::Format_RGB888);
        framecode::paint(cover, 77);
        QVERIFY(cover.save(picture));
        QVERIFY(joinStreams(
            clip("soundonly.mp4").path, picture, "-disposition:v attached_pic " + path));
        PlaybackRig rig;
        QVERIFY(rig.open(path));
        QCOMPARE(rig.settledOn(77), 77);
        QVERIFY(rig.manager.duration() > 5.9 && rig.manager.frameRate() == 25.0);
        rig.goTo(100);
        QVERIFY(rig.waitFor(Manager::Seeking) && rig.waitFor(Manager::Ready)); // finds the sound
        QCOMPARE(rig.shown(), 77);
    }

    void behindTheLastPicture_itStaysOnShow()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath("longsound.mkv");
        QVERIFY(joinStreams(clip("videoonly.mp4").path, clip("soundonly.mp4").path, path));
        PlaybackRig rig;
        QVERIFY(rig.open(path));
        QVERIFY(rig.manager.duration() > 5.5); // the pictures end after 4 s
        rig.goTo(138, true);
        QCOMPARE(rig.settledOn(100), 100);
        QCOMPARE(rig.visit(99), 99);
    }

    // On the way to a time behind it such a picture is skipped.
    void lastPictureThatNoneRefersTo_isShownAllTheSame()
    {
        const QTemporaryDir folder;
        const QString stream = folder.filePath("stream.hevc");
        const QString path = folder.filePath("longsound.mkv");
        const QString encode = "-v error -i %1 -frames:v 60 -an -c:v libx265 -x265-params "
                               "bframes=0:keyint=250:log-level=none %2";
        QCOMPARE(
            QProcess::execute("ffmpeg", encode.arg(clip("longgop.mp4").path, stream).split(' ')),
            0);
        QFile file(stream);
        QVERIFY(file.open(QIODevice::ReadWrite));
        const QByteArray startCode("\0\0\1", 3);
        const int lastUnit = file.readAll().lastIndexOf(startCode) + startCode.size();
        QVERIFY(file.seek(lastUnit) && file.putChar('\0')); // TRAIL_N in the place of TRAIL_R
        file.close();
        QVERIFY(joinStreams(stream, clip("soundonly.mp4").path, path));
        PlaybackRig rig;
        QVERIFY(rig.open(path));
        rig.goTo(138, true);
        QCOMPARE(rig.settledOn(60), 60);
    }

    void steppingBackAfterALaggingPlay_showsEveryFrame()
    {
        PlaybackRig rig;
        QVERIFY(rig.open("width1366.mp4"));
        rig.manager.setCacheSize(0, 0.8F);
        QVERIFY(rig.waitFor(Manager::Ready));
        rig.manager.setSpeedMultiplier(50.0); // faster than any machine decodes
        rig.manager.play();
        QTest::qWait(20);
        rig.manager.pause();
        QVERIFY(rig.waitFor(Manager::Ready));
        for (int frame = 74; frame > 50; --frame) {
            QCOMPARE(rig.visit(frame), frame);
        }
    }

    void playingAtOnceAfterASeek_showsNothingBeforeTheTarget()
    {
        PlaybackRig rig;
        QVERIFY(rig.open("longgop.mp4"));
        QCOMPARE(rig.visit(390, true), 390);
        QSet<int> shown;
        connect(
            &rig.manager, &Manager::playbackTimeChanged, this, [&] { shown.insert(rig.shown()); });
        rig.goTo(240, true);
        QVERIFY(rig.waitFor(Manager::Ready));
        rig.manager.play();
        QTRY_VERIFY(rig.shown() > 250 && rig.shown() < 390);
        rig.manager.pause();
        shown.remove(390); // what was on show before
        QVERIFY(!shown.isEmpty() && *std::min_element(shown.begin(), shown.end()) >= 240);
    }

    void everyFile_isDecodedToItsEnd()
    {
        PlaybackRig rig;
        for (const char* name : { "mpeg4.avi", "hevc.mp4" }) {
            QVERIFY(rig.open(name));
            QTRY_COMPARE(rig.manager.cachedFrameCount(), clip(name).frameCount);
        }
    }

    // One decode serves many steps back; asked for while it still runs, none starts it anew.
    void stepsBackOutsideTheCache_shareOneSeek()
    {
        PlaybackRig rig;
        QVERIFY(rig.open("longgop.mp4"));
        QCOMPARE(rig.visit(230, true), 230);
        QSignalSpy seeks(&rig.manager, &Manager::seekRequested);
        for (int frame = 220; frame >= 190; --frame) {
            rig.goTo(frame, false, Manager::Reach::Backward);
            if (frame % 5 == 0) {
                QCOMPARE(rig.settledOn(frame), frame);
            }
        }
        QCOMPARE(seeks.count(), 1);
        rig.goTo(236, true);
        rig.goTo(239, false); // further on, while the first is on its way
        QCOMPARE(rig.settledOn(239), 239);
        rig.goTo(237, false); // not kept, perhaps
        QCOMPARE(rig.settledOn(237), 237);
        QCOMPARE(rig.visit(400, true), 400);
        rig.goTo(395, true, Manager::Reach::Backward); // would keep all, but begins at frame 251
        rig.goTo(240, false, Manager::Reach::Backward);
        QCOMPARE(rig.settledOn(240), 240);
    }

    // Its pictures are so large that a few dozen fill the cache.
    void steppingBackFasterThanDecoding_showsEveryFrameAskedFor()
    {
        PlaybackRig rig;
        QRandomGenerator random(7);
        QVERIFY(rig.open("large.mp4"));
        QCOMPARE(rig.visit(230, true), 230);
        const QPixmap seenLongAgo = rig.viewer.pixmap();
        for (int frame = 230; frame > 1;) {
            const int step =
                random.bounded(12) == 0 ? random.bounded(1, 20) : random.bounded(-3, 0);
            frame = qBound(1, frame + step, 240);
            rig.goTo(frame, false, step < 0 ? Manager::Reach::Backward : Manager::Reach::Target);
            QTest::qWait(random.bounded(10));
            if (random.bounded(20) == 0) {
                QCOMPARE(rig.settledOn(frame), frame);
            }
        }
        QCOMPARE(rig.settledOn(1), 1);
        QVERIFY(rig.open("longgop.mp4"));
        rig.viewer.setPixmap(seenLongAgo); // which shares its memory with a cache long gone
        QCOMPARE(rig.shown(), 230);
    }

    void steppingWhileASeekRuns_addsUp()
    {
        PlaybackRig rig;
        QVERIFY(rig.open("longgop.mp4"));
        rig.goTo(200, true);
        for (int i = 0; i < 10; ++i) {
            const double frame = rig.manager.playbackTime() * rig.manager.frameRate() + 1.0;
            rig.goTo(static_cast<int>(frame) + 1);
        }
        QCOMPARE(rig.manager.status(), Manager::Seeking);
        QCOMPARE(rig.settledOn(210), 210);
    }

    void cacheResizedWhileAFileLoads_keepsTheFrameAskedForAtReady()
    {
        PlaybackRig rig;
        bool isFirst = true;
        connect(&rig.manager, &Manager::statusChanged, this, [&](Manager::Status status) {
            if (status == Manager::Ready && std::exchange(isFirst, false)) {
                rig.goTo(6);
            }
        });
        connect(&rig.manager, &Manager::mediaSourceLoaded, this,
            [&] { rig.manager.setCacheSize(300'000'000, 0.5F); });
        QVERIFY(rig.request("prores.mov"));
        QCOMPARE(rig.settledOn(6), 6);
        QTest::qWait(100);
        rig.manager.setFlip(false, false); // paints anew
        QCOMPARE(rig.settledOn(6), 6);
    }

    void failedOpen_isSaidOnceAndLeavesTheWayFree()
    {
        PlaybackRig rig;
        QSignalSpy errors(&rig.manager, &Manager::error);
        QVERIFY(rig.open("videoonly.mp4"));
        QVERIFY(!rig.request("/clip.txt") && rig.waitFor(Manager::NoMedia));
        QVERIFY(rig.request("/missing.mkv"));
        QTRY_COMPARE(errors.count(), 2);
        QVERIFY(rig.waitFor(Manager::NoMedia));
        QCOMPARE(errors.at(0).at(1).toString(), "Unsupported format: txt");
        QCOMPARE(errors.at(1).at(1).toString(), "Failed to open media. Invalid file.");
        QVERIFY(rig.open("videoonly.mp4"));
        QCOMPARE(rig.settledOn(1), 1);
    }

    void pauseWithoutAFile_losesNoName()
    {
        PlaybackRig rig;
        rig.manager.pause();
        QVERIFY(rig.open("vp9.webm"));
    }

    void loopFromInsideTheEnd_isNotUndone()
    {
        PlaybackRig rig;
        QVERIFY(rig.open("width1366.mp4"));
        QCOMPARE(rig.visit(70), 70);
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

    void pictures_areShownUprightAndInShape()
    {
        const struct {
            const char* name; // turned.mp4 is stored on its side
            bool across, upDown; // flips, before the rotation
            int rotation;
            QSize shown;
        } rows[] = { { "turned.mp4", false, false, 0, { 200, 320 } },
            { "turned.mp4", true, false, 270, { 320, 200 } },
            { "turned.mp4", true, true, 180, { 200, 320 } },
            { "anamorphic.mp4", false, true, -90, { 180, 320 } } };
        for (const auto& [name, across, upDown, rotation, shown] : rows) {
            PlaybackRig rig;
            QVERIFY(rig.open(name));
            rig.manager.setFlip(across, upDown);
            rig.manager.setRotation(rotation);
            QCOMPARE(rig.manager.rotation(), rotation % 360);
            QCOMPARE(rig.manager.shownVideoSize(), shown);
            rig.viewer.resize(shown * 2);
            const QImage view = rig.viewer.grab().toImage();
            QCOMPARE(QSize(rig.viewer.imageWidth(), rig.viewer.imageHeight()), shown * 2);
            const QImage painted =
                view.transformed(QTransform().rotate(-rotation)).mirrored(across, upDown);
            QCOMPARE(framecode::read(painted.scaled(clip(name).width, clip(name).height)), 1);
            rig.goTo(50, true);
            rig.manager.setRotation(0);
            rig.manager.setFlip(false, false); // while the seek runs
            QCOMPARE(rig.settledOn(50), 50);
        }
    }

    void aManagerThatLeavesEarly_isSoonGone()
    {
        for (const int afterMs : { 0, 5, 30, 500 }) { // at once; opening; starting; ready
            QElapsedTimer leaving;
            {
                PlaybackRig rig;
                rig.request("hevc.mp4");
                QTest::qWait(afterMs);
                leaving.start();
            }
            QVERIFY(leaving.elapsed() < 2000); // it waits a tenth of a second at most
        }
    }
};

QTEST_MAIN(TestPlaybackManager)
#include "tst_playbackmanager.moc"
