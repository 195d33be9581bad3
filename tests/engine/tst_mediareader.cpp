#include "clips.h"
#include "mediareader.h"
#include "mediasource.h"

#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

namespace {

QByteArray bytesOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class TestMediaReader : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // Files that the clips do not hold.
    void initTestCase()
    {
        const QString cover =
            " -f lavfi -i color=red:s=64x48:d=0.04 -map 1 -map 0 -c copy -c:v:0 mjpeg"
            " -disposition:v:0 attached_pic ";
        make(clip("soundonly.mp4").path + cover + path("cover.mp4"));
        make(clip("vp9.webm").path + " -c copy -live 1 " + path("live.webm"));
        make(clip("opengop.mkv").path + " -c:v copy -an " + path("raw.h264"));
        write("unknown.mp4", bytesOf(clip("opengop.mp4").path).replace("avc1", "zzz1"));
        write("empty.mp4", {});
        write("text.mov", "It was a dark and stormy night.\n");
        QVERIFY(QDir(m_folder.path()).mkdir("folder.mp4"));
        QCOMPARE(mkfifo(qPrintable(path("pipe.mp4")), 0600), 0);
    }

    void open_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("width"); // -1: no video
        QTest::addColumn<bool>("hasAudio");
        QTest::addColumn<double>("rate");
        QTest::addColumn<double>("seconds");
        QTest::addColumn<int>("pictures"); // packets of the video stream, read from the start
        for (const Clip& clip : allClips()) {
            QTest::newRow(qPrintable(clip.name))
                << clip.path << (clip.hasVideo ? clip.width : -1) << clip.hasAudio << clip.rate
                << clip.seconds << std::min<int>(clip.frameCount, PacketQueue::capacity);
        }
        const auto row = [this](const char* name, int width, bool hasAudio, double seconds,
                             int pictures) {
            QTest::newRow(name) << path(name) << width << hasAudio << 25.0 << seconds << pictures;
        };
        row("cover.mp4", 64, true, 6.0, 1);
        row("live.webm", 320, true, 6.0, 150); // names no duration
        row("raw.h264", 320, false, 0.0, 200); // nor time stamps
        row("unknown.mp4", -1, true, 8.0, 0);
    }
    void open()
    {
        QFETCH(const QString, name);
        QFETCH(const int, width);
        QFETCH(const bool, hasAudio);
        QFETCH(const double, seconds);
        MediaSource source(name);
        MediaReader reader(&source);
        if (name.endsWith("unknown.mp4")) {
            QTest::ignoreMessage(QtDebugMsg, QRegularExpression("WARNING.*zzz1"));
        }
        QCOMPARE(reader.open(), 0);
        QCOMPARE(source.turn.exchangesSides() ? source.videoHeight() : source.videoWidth(), width);
        QCOMPARE(source.videoCodec != nullptr, width > 0);
        QCOMPARE(source.audioCodec != nullptr, hasAudio);
        QVERIFY2(std::abs(source.duration() - seconds) < 0.55,
            qPrintable(QString::number(source.duration())));
        QTEST(source.rate(), "rate");

        source.soundUnused = true; // frees what is not looked at here
        while (source.videoPackets.hasRoom() && reader.readPackets(1) >= 0) { }
        QTEST(source.videoPackets.usedSlots(), "pictures");
    }

    void open_refuses_data()
    {
        QTest::addColumn<QString>("name");
        for (const char* name :
            { "missing.mp4", "empty.mp4", "text.mov", "folder.mp4", "pipe.mp4" }) {
            QTest::newRow(name) << path(name);
        }
    }
    void open_refuses()
    {
        QFETCH(const QString, name);
        MediaSource source(name);
        QVERIFY(MediaReader(&source).open() < 0);
        QVERIFY(!source.opened && source.duration() == 0.0 && source.videoWidth() == -1
            && source.rate() == -1.0);
    }

private:
    QString path(const QString& name) const { return m_folder.filePath(name); }

    static void make(const QString& arguments)
    {
        const QString all = "-nostdin -loglevel error -i " + arguments;
        QCOMPARE(QProcess::execute("ffmpeg", all.split(' ', Qt::SkipEmptyParts)), 0);
    }

    void write(const QString& name, const QByteArray& bytes) const
    {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }

    const QTemporaryDir m_folder;
};

QTEST_GUILESS_MAIN(TestMediaReader)
#include "tst_mediareader.moc"
