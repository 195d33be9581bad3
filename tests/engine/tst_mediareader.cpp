#include "clips.h"
#include "mediareader.h"
#include "mediasource.h"

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

class TestMediaReader : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void unusualFilesAreOpened_data()
    {
        QTest::addColumn<QString>("made"); // by the ffmpeg program, %1 is the folder of the clips
        QTest::addColumn<int>("width"); // -1: no video
        QTest::addColumn<bool>("hasAudio");
        QTest::addColumn<double>("seconds");
        QTest::addColumn<int>("pictures"); // packets of the video stream, read from the start
        // clang-format off
        QTest::newRow("cover.mp4") << "-i %1/soundonly.mp4 -f lavfi -i color=red:s=64x48:d=0.04 -map 1 -map 0 -c copy -c:v:0 mjpeg -disposition:v:0 attached_pic" << 64 << true << 6.0 << 1;
        QTest::newRow("live.webm") << "-i %1/vp9.webm -c copy -live 1" << 320 << true << 6.0 << 150; // names no duration
        QTest::newRow("raw.h264") << "-i %1/opengop.mkv -c:v copy -an" << 320 << false << 0.0 << 200; // nor time stamps
        QTest::newRow("unknown.mp4") << "-i %1/opengop.mp4 -c copy" << -1 << true << 8.0 << 0;
        // clang-format on
    }
    void unusualFilesAreOpened()
    {
        QFETCH(const QString, made);
        QFETCH(const int, width);
        QFETCH(const double, seconds);
        const QTemporaryDir folder;
        const QString path = folder.filePath(QTest::currentDataTag());
        const QString clips = QFileInfo(clip("vp9.webm").path).path();
        const QString command = "-nostdin -loglevel error " + made.arg(clips) + " " + path;
        QCOMPARE(QProcess::execute("ffmpeg", command.split(' ')), 0);
        if (width < 0) { // a codec that nobody knows
            QFile file(path);
            QVERIFY(file.open(QIODevice::ReadWrite));
            const QByteArray unknown = file.readAll().replace("avc1", "zzz1");
            QVERIFY(file.seek(0) && file.write(unknown) == unknown.size());
            QTest::ignoreMessage(QtDebugMsg, QRegularExpression("WARNING.*zzz1"));
        }
        MediaSource source(path);
        MediaReader reader(&source);
        QCOMPARE(reader.open(), 0);
        QCOMPARE(source.videoWidth(), width);
        QCOMPARE(source.videoCodec != nullptr, width > 0);
        QTEST(source.audioCodec != nullptr, "hasAudio");
        QVERIFY2(std::abs(source.duration() - seconds) < 0.55,
            qPrintable(QString::number(source.duration())));
        QCOMPARE(source.rate(), 25.0);

        source.soundUnused = true; // frees what is not looked at here
        while (source.videoPackets.hasRoom() && reader.readPackets(1) >= 0) { }
        QTEST(source.videoPackets.usedSlots(), "pictures");
    }
};

QTEST_GUILESS_MAIN(TestMediaReader)
#include "tst_mediareader.moc"
