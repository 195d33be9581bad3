#include "clips.h"
#include "mediamanager.h"
#include "mediareader.h"
#include "mediasource.h"

#include <QFile>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

class TestMediaReader : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void unusualFilesAreOpened_data()
    {
        QTest::addColumn<QString>("made"); // by the ffmpeg program, %1 is the folder of the clips
        QTest::addColumn<double>("seconds");
        QTest::addColumn<int>("pictures"); // packets of the video stream, 0 where it has none
        QTest::newRow("live.webm") << "-i %1/vp9.webm -c copy -live 1" << 6.0 << 150; // no duration
        QTest::newRow("raw.h264") << "-i %1/opengop.mkv -c:v copy -an" << 0.0 << 200; // nor times
        QTest::newRow("unknown.mp4") << "-i %1/opengop.mp4 -c copy" << 8.0 << 0;
    }
    void unusualFilesAreOpened()
    {
        QFETCH(const QString, made);
        QFETCH(const double, seconds);
        QFETCH(const int, pictures);
        const QTemporaryDir folder;
        const QString path = folder.filePath(QTest::currentDataTag());
        const QString clips = QFileInfo(clip("vp9.webm").path).path();
        const QString command = "-nostdin -loglevel error " + made.arg(clips) + " " + path;
        QCOMPARE(QProcess::execute("ffmpeg", command.split(' ')), 0);
        if (pictures == 0) { // a codec that nobody knows
            QFile file(path);
            QVERIFY(file.open(QIODevice::ReadWrite));
            const QByteArray unknown = file.readAll().replace("avc1", "zzz1");
            QVERIFY(file.seek(0) && file.write(unknown) == unknown.size());
        }
        MediaSource source(path);
        MediaReader reader(&source);
        QCOMPARE(reader.open(), 0);
        QCOMPARE(source.videoCodec != nullptr, pictures > 0);
        QVERIFY2(std::abs(source.duration() - seconds) < 0.55,
            qPrintable(QString::number(source.duration())));
        QCOMPARE(source.rate(), 25.0);

        source.soundUnused = true; // frees what is not looked at here
        while (source.videoPackets.hasRoom() && reader.readPackets(1) >= 0) { }
        QCOMPARE(source.videoPackets.usedSlots(), pictures);
    }

    // A seek into a file that did not open read from a file that was not there.
    void aFileThatDoesNotOpenIsNotReadFrom()
    {
        MediaSource source("/missing.mp4");
        MediaManager manager;
        QSignalSpy errors(&manager, &MediaManager::error);
        manager.load(&source);
        source.seekRequested = true;
        manager.seek();
        manager.read();
        manager.unload();
        QCOMPARE(errors.count(), 1);
    }
};

QTEST_GUILESS_MAIN(TestMediaReader)
#include "tst_mediareader.moc"
