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
    void badFiles_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("content"); // null where something of that name is there
        QDir(m_folder.path()).mkdir("folder.mp4");
        QCOMPARE(mkfifo(qPrintable(m_folder.filePath("pipe.mkv")), 0600), 0);
        QTest::newRow("a folder") << "folder.mp4" << QByteArray();
        QTest::newRow("a pipe") << "pipe.mkv" << QByteArray();
        QTest::newRow("a playlist that names a pipe")
            << "list.mov" << QByteArray("ffconcat version 1.0\nfile pipe.mkv\n");

        QByteArray noise(100000, 0);
        QRandomGenerator(3).fillRange(reinterpret_cast<quint32*>(noise.data()), noise.size() / 4);
        QTest::newRow("random bytes") << "noise.avi" << noise;

        QByteArray absurd = contentOf("videoonly.mp4");
        const int sizes = absurd.indexOf("avc1", absurd.indexOf("stsd") + 8) + 28;
        absurd.replace(sizes, 4, "\xff\xff\xff\xff");
        absurd.replace(absurd.indexOf("tkhd") + 80, 8, QByteArray(8, '\xff'));
        QTest::newRow("absurd sizes") << "absurd.mp4" << absurd;

        QTest::newRow("pixels that nobody can convert")
            << "pixels.avi" << contentOf("raw.avi").replace("I420", "Y411");

        for (int tenth = 1; tenth <= 10; ++tenth) {
            const QString name = tenth % 2 == 0 ? "opengop.mkv" : "mpeg2.mpg";
            const QByteArray whole = contentOf(name);
            QTest::addRow("cut at %d of 11", tenth)
                << name << whole.left(whole.size() * tenth / 11);
        }
    }
    void badFiles()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, content);
        PlaybackRig rig;
        tryOut(rig, name, content);
        QVERIFY(rig.open("width638.mp4"));
        QCOMPARE(rig.visit(33), 33);
    }

    void flippedBits()
    {
        const QStringList names{ "opengop.mkv", "mpeg4.avi", "h264.flv" };
        QRandomGenerator random(200);
        PlaybackRig rig;
        for (int copy = 0; copy < 200; ++copy) {
            const QString& name = names[copy % names.size()];
            QByteArray damaged = contentOf(name);
            for (int i = 0; i < 20; ++i) { // half of them in the headers, where it hurts most
                const int place = random.bounded(i % 2 == 0 ? 2000 : damaged.size());
                damaged[place] = static_cast<char>(damaged[place] ^ (1 << random.bounded(8)));
            }
            tryOut(rig, name, damaged);
        }
        QVERIFY(rig.open(names[0]));
        QCOMPARE(rig.visit(99), 99);
    }

private:
    // Ready with a picture or without, or closed with an error: anything but a state that is never
    // left.
    static bool settles(const PlaybackManager& manager)
    {
        const auto isSettled = [&manager] {
            const auto status = manager.status();
            return status == PlaybackManager::NoMedia || status == PlaybackManager::Ready
                || status == PlaybackManager::InvalidMedia;
        };
        return QTest::qWaitFor(isSettled, 10000);
    }

    void tryOut(PlaybackRig& rig, const QString& name, const QByteArray& content)
    {
        QFile file(m_folder.filePath(name));
        if (!content.isNull()) {
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
            file.close();
        }
        rig.request(file.fileName());
        QVERIFY2(settles(rig.manager), "opening has no end");
        for (const double share : { 0.5, 0.99, 0.0 }) {
            rig.manager.seek(true, rig.manager.duration() * share, 0.0);
            QVERIFY2(settles(rig.manager), "a seek has no end");
        }
        rig.manager.setSpeedMultiplier(4.0);
        rig.manager.play();
        QTest::qWait(10);
    }

    static QByteArray contentOf(const QString& name)
    {
        QFile file(clip(name).path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir m_folder;
};

QTEST_MAIN(TestRobustness)
#include "tst_robustness.moc"
