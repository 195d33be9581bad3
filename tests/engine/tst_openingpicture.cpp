#include "clips.h"
#include "framecode.h"
#include "openingpicture.h"

#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

namespace {

/// Number of the picture; 0 where there is none.
int openingFrame(const QString& path, int width, int height)
{
    std::atomic<bool> isAborted{ false };
    OpeningPicture opening;
    opening.start(path, isAborted);
    opening.wait();
    const auto picture = opening.take(0, width, height);
    return picture ? framecode::read(QImage(
               picture->data.get(), width, height, picture->size / height, QImage::Format_RGB888))
                   : 0;
}

} // namespace

/// It is the first picture or none.
class TestOpeningPicture : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ofEveryKindOfFile()
    {
        QStringList found;
        for (const Clip& clip : allClips()) {
            if (clip.hasVideo && clip.name != "turned.mp4") { // stored on its side
                const int frame = openingFrame(clip.path, clip.width, clip.height);
                QVERIFY2(frame == 0 || frame == 1, qPrintable(clip.name));
                found << (frame == 1 ? clip.name : QString());
            }
        }
        for (const char* name : { "vp9.webm", "prores.mov", "opengop.mkv", "opengop.mp4",
                 "hevc.mp4", "rate23976.mkv", "longgop.mp4", "large.mp4", "latestart.mkv" }) {
            QVERIFY2(found.contains(name), name);
        }
    }

    void noneWhereAnotherComesFirst_data()
    {
        QTest::addColumn<QString>("command");
        QTest::newRow("begins amid an open group") << "-ss 2.5 -i %1opengop.mkv -c copy %2.mkv";
        QTest::newRow("hides its first pictures") << "-ss 1 -i %1longgop.mp4 -c copy %2.mp4";
        QTest::newRow("has one picture in a minute of sound")
            << "-i %1longgop.mp4 -stream_loop 9 -i %1soundonly.mp4 -map 0:v -map 1:a -c copy "
               "-bsf:v noise=drop=gt(n\\,0) %2.mkv";
        QTest::newRow("has no pictures") << "-i %1soundonly.mp4 -c copy %2.mp4";
    }
    void noneWhereAnotherComesFirst()
    {
        QFETCH(QString, command);
        const QTemporaryDir folder;
        const QString clips = QFileInfo(clip("opengop.mkv").path).path() + '/';
        const QString made = folder.filePath("made");
        const QStringList arguments = ("-v error " + command).arg(clips, made).split(' ') << "-y";
        QCOMPARE(QProcess::execute("ffmpeg", arguments), 0);
        QCOMPARE(openingFrame(made + arguments.at(arguments.size() - 2).right(4), 320, 180), 0);
    }

    void isTakenOnceAndOnlyWhereItFits()
    {
        const Clip& clip = ::clip("opengop.mp4");
        std::atomic<bool> isAborted{ false };
        for (const int unfit : { 0, 1, 2 }) {
            OpeningPicture opening;
            opening.start(clip.path, isAborted);
            opening.wait();
            const bool fits = unfit == 0;
            const auto taken =
                opening.take(unfit == 1 ? 1 : 0, clip.width + unfit / 2, clip.height);
            QCOMPARE(taken != nullptr, fits);
            QVERIFY(!opening.take(0, clip.width, clip.height));
        }
        OpeningPicture late;
        late.giveUp();
        late.start(clip.path, isAborted);
        late.wait();
        QVERIFY(!late.take(0, clip.width, clip.height));
    }
};

QTEST_GUILESS_MAIN(TestOpeningPicture)
#include "tst_openingpicture.moc"
