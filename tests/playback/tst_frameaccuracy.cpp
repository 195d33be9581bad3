#include "clips.h"
#include "playbackrig.h"

#include <QRandomGenerator>
#include <QtTest>

/// The picture on show is the one asked for, read from the picture itself, in every kind of file.
class TestFrameAccuracy : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void fromTheStart_data() { addClips(); }
    void fromTheStart();
    void anywhere_data() { addClips(); }
    void anywhere();
    void seekFloodEndsOnTheLastTarget();

private:
    static void addClips();
};

void TestFrameAccuracy::addClips()
{
    QTest::addColumn<QString>("name");
    for (const Clip& clip : allClips()) {
        if (clip.hasVideo) {
            QTest::newRow(qPrintable(clip.name)) << clip.name;
        }
    }
}

void TestFrameAccuracy::fromTheStart()
{
    QFETCH(QString, name);
    PlaybackRig rig;
    QVERIFY(rig.open(clip(name).path));
    for (int frame = 1; frame <= clip(name).frameCount; ++frame) {
        rig.goTo(frame);
        QCOMPARE(rig.settledOn(frame), frame);
    }
}

void TestFrameAccuracy::anywhere()
{
    QFETCH(QString, name);
    PlaybackRig rig;
    QVERIFY(rig.open(clip(name).path));
    const int count = clip(name).frameCount;
    QRandomGenerator random(20);
    QVector<int> targets{ 1, 2, count - 1, count, 1 };
    while (targets.size() < 25) {
        targets.append(random.bounded(1, count + 1));
    }
    for (const int frame : targets) {
        rig.goTo(frame, true);
        QCOMPARE(rig.settledOn(frame), frame);
    }
}

void TestFrameAccuracy::seekFloodEndsOnTheLastTarget()
{
    PlaybackRig rig;
    QVERIFY(rig.open(clip(QStringLiteral("opengop.mp4")).path));
    QRandomGenerator random(500);
    int frame = 0;
    for (int i = 0; i < 500; ++i) {
        frame = random.bounded(1, clip(QStringLiteral("opengop.mp4")).frameCount + 1);
        rig.goTo(frame, i % 2 == 0);
        if (i % 7 == 0) {
            QCoreApplication::processEvents();
        }
    }
    QCOMPARE(rig.settledOn(frame), frame);
}

QTEST_MAIN(TestFrameAccuracy)
#include "tst_frameaccuracy.moc"
