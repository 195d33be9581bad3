#include "clips.h"
#include "playbackrig.h"

#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

/// The picture on show is the one asked for, read from the picture itself, in every kind of file.
class TestFrameAccuracy : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void fromTheStartAndAnywhere_data()
    {
        QTest::addColumn<QString>("name");
        for (const Clip& clip : allClips()) {
            if (clip.hasVideo) {
                QTest::newRow(qPrintable(clip.name)) << clip.name;
            }
        }
    }
    void fromTheStartAndAnywhere()
    {
        QFETCH(QString, name);
        PlaybackRig rig;
        QSet<int> shown; // while it loads
        const auto isReady = [&] {
            shown << rig.shown();
            return rig.manager.status() == PlaybackManager::Ready;
        };
        QVERIFY(rig.request(name) && QTest::qWaitFor(isReady));
        QVERIFY((shown - QSet<int>{ -1, 1 }).isEmpty());
        const int count = clip(name).frameCount;
        for (int frame = 1; frame <= count; ++frame) {
            QCOMPARE(rig.visit(frame), frame);
        }
        QRandomGenerator random(20);
        QVector<int> targets{ 1, 2, count - 1, count, 1 };
        while (targets.size() < 25) {
            targets.append(random.bounded(1, count + 1));
        }
        for (const int frame : qAsConst(targets)) {
            QCOMPARE(rig.visit(frame, true), frame);
        }
    }

    // Ten pictures in four tenths of a second, of which the last rests for 0.84 s; then the next.
    void aPictureRestsUntilTheNext_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("names the mean rate") << "resting.mp4";
        QTest::newRow("claims a constant rate") << "resting.mkv";
    }
    void aPictureRestsUntilTheNext()
    {
        QFETCH(QString, name);
        QTemporaryDir folder;
        const QString path = folder.filePath(name);
        const QString command = "-v error -i %1 -vf setpts=(N+20*floor(N/10))/25/TB "
                                "-fps_mode passthrough -c:v libx264 -crf 20 -bf 3 -g 40 "
                                "-x264-params b-adapt=0:scenecut=0 %2";
        QCOMPARE(
            QProcess::execute("ffmpeg", command.arg(clip("videoonly.mp4").path, path).split(' ')),
            0);
        PlaybackRig rig;
        QVERIFY(rig.open(path));
        const auto visit = [&rig](int tick, bool clearsCache, PlaybackManager::Reach reach) {
            rig.manager.seek(clearsCache, (tick + 0.5) / 25.0, 0.0, reach);
            const int shown = tick / 30 * 10 + std::min(tick % 30, 9) + 1;
            QCOMPARE(rig.settledOn(shown), shown);
        };
        for (int tick = 0; tick < 275; tick += 2) {
            visit(tick, false, PlaybackManager::Reach::Target);
        }
        for (int tick = 274; tick >= 0; tick -= 3) {
            visit(tick, true, PlaybackManager::Reach::Backward);
        }
        for (int tick = 0; tick < 275; tick += 7) {
            visit(tick, true, PlaybackManager::Reach::Target);
        }
    }
};

QTEST_MAIN(TestFrameAccuracy)
#include "tst_frameaccuracy.moc"
