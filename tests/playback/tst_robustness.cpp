#include "clips.h"
#include "playbackrig.h"

#include <QDir>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>

/// Whatever comes, a good file opens afterwards and shows the frame asked for.
class TestRobustness : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void badFiles_data();
    void badFiles();
    void flippedBits_data();
    void flippedBits();

private:
    static bool settles(PlaybackRig& rig);
    static void tryOut(PlaybackRig& rig, const QString& path);
    static QByteArray contentOf(const QString& path);

    QTemporaryDir m_directory;
};

// Ready with a picture or without, or closed with an error: anything but a state that is never
// left.
bool TestRobustness::settles(PlaybackRig& rig)
{
    return QTest::qWaitFor(
        [&] {
            const PlaybackManager::Status status = rig.manager.status();
            return status == PlaybackManager::NoMedia || status == PlaybackManager::Ready
                || status == PlaybackManager::InvalidMedia;
        },
        10000);
}

void TestRobustness::tryOut(PlaybackRig& rig, const QString& path)
{
    rig.manager.setMedia(path, 256000000, 0.8F);
    QVERIFY2(settles(rig), "opening has no end");
    for (const double share : { 0.5, 0.99, 0.0 }) {
        rig.manager.seek(true, rig.manager.duration() * share, 0.0);
        QVERIFY2(settles(rig), "a seek has no end");
    }
    rig.manager.setSpeedMultiplier(4.0);
    rig.manager.play();
    QTest::qWait(10);
}

QByteArray TestRobustness::contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void TestRobustness::badFiles_data()
{
    QTest::addColumn<QString>("path");
    const auto write = [&](const char* row, const QString& name, const QByteArray& content) {
        const QString path = m_directory.filePath(QString::fromLatin1(row).remove(' ') + name);
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
        QTest::newRow(row) << path;
    };
    QDir(m_directory.path()).mkdir(QStringLiteral("folder.mp4"));
    QTest::newRow("a folder") << m_directory.filePath(QStringLiteral("folder.mp4"));
    const QString pipe = m_directory.filePath(QStringLiteral("pipe.mkv"));
    QCOMPARE(mkfifo(qPrintable(pipe), 0600), 0);
    QTest::newRow("a pipe") << pipe;
    write("a playlist that names a pipe", QStringLiteral(".mov"),
        "ffconcat version 1.0\nfile pipe.mkv\n");

    QRandomGenerator random(3);
    QByteArray noise(100000, 0);
    random.fillRange(reinterpret_cast<quint32*>(noise.data()), noise.size() / 4);
    write("random bytes", QStringLiteral(".avi"), noise);

    QByteArray absurd = contentOf(clip(QStringLiteral("videoonly.mp4")).path);
    const int header = absurd.indexOf("avc1", absurd.indexOf("stsd") + 8) + 28; // width and height
    absurd.replace(header, 4, "\xff\xff\xff\xff");
    absurd.replace(absurd.indexOf("tkhd") + 80, 8, QByteArray(8, '\xff'));
    write("absurd sizes", QStringLiteral(".mp4"), absurd);

    for (int tenth = 1; tenth <= 10; ++tenth) {
        const QString name =
            tenth % 2 == 0 ? QStringLiteral("opengop.mkv") : QStringLiteral("mpeg2.mpg");
        const QByteArray whole = contentOf(clip(name).path);
        write(qPrintable(QStringLiteral("cut at %1 of 11").arg(tenth)), name,
            whole.left(whole.size() * tenth / 11));
    }
}

void TestRobustness::badFiles()
{
    QFETCH(QString, path);
    PlaybackRig rig;
    tryOut(rig, path);
    QVERIFY(rig.open(clip(QStringLiteral("width638.mp4")).path));
    rig.goTo(33);
    QCOMPARE(rig.settledOn(33), 33);
}

void TestRobustness::flippedBits_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : { "opengop.mkv", "mpeg4.avi", "h264.flv" }) {
        QTest::newRow(name) << QString::fromLatin1(name);
    }
}

void TestRobustness::flippedBits()
{
    QFETCH(QString, name);
    const QByteArray whole = contentOf(clip(name).path);
    const QString path = m_directory.filePath(name);
    QRandomGenerator random(200);
    PlaybackRig rig;
    for (int copy = 0; copy < 67; ++copy) {
        QByteArray damaged = whole;
        for (int i = 0; i < 20; ++i) {
            // Half of the damage in the headers, where it hurts most.
            const int place = random.bounded(i % 2 == 0 ? 2000 : damaged.size());
            damaged[place] = static_cast<char>(damaged[place] ^ (1 << random.bounded(8)));
        }
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(damaged);
        file.close();
        tryOut(rig, path);
    }
    QVERIFY(rig.open(clip(name).path));
    rig.goTo(99);
    QCOMPARE(rig.settledOn(99), 99);
}

QTEST_MAIN(TestRobustness)
#include "tst_robustness.moc"
