#include "clips.h"
#include "playbackrig.h"

#include <QRandomGenerator>
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
        QVERIFY(rig.open(name));
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
};

QTEST_MAIN(TestFrameAccuracy)
#include "tst_frameaccuracy.moc"
