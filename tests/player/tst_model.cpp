#include "mediacopy.h"
#include "ratemeter.h"
#include "recentlist.h"
#include "speedladder.h"
#include "windowplacement.h"

#include <QtTest>

// The small lists and figures of the window, without a window.
class TestModel : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void speed_climbsTheLadder()
    {
        const QVector<QPair<double, double>> up{ { 0.05, 0.1 }, { 0.3, 0.333 }, { 0.333, 0.5 },
            { 1.0, 1.5 }, { 2.0, 4.0 }, { 3.0, 4.0 }, { 4.0, 4.0 } };
        for (const auto& [from, to] : up) {
            QCOMPARE(speedladder::increased(from), to);
        }
        const QVector<QPair<double, double>> down{ { 4.0, 2.0 }, { 1.0, 0.75 }, { 0.3, 0.25 },
            { 0.25, 0.1 }, { 0.1, 0.1 } };
        for (const auto& [from, to] : down) {
            QCOMPARE(speedladder::decreased(from), to);
        }
        QCOMPARE(speedladder::clamped(9.0), 4.0);
    }

    void recentList_isNewestFirstAndShort()
    {
        QStringList list{ "b", "a" };
        recentlist::add(list, "a", 3);
        recentlist::add(list, "A", 3);
        recentlist::add(list, "c", 3);
        QCOMPARE(list, (QStringList{ "c", "A", "a" }));
        recentlist::add(list, "d", 0);
        QVERIFY(list.isEmpty());
    }

    void rate_isMeasuredBySeconds()
    {
        RateMeter meter;
        meter.start(10, 5000);
        QVERIFY(!meter.tick(34, 5999, 1.0, 25.0));
        QCOMPARE(meter.tick(40, 6200, 1.0, 25.0).value(), 25.0);
        QCOMPARE(meter.tick(5, 7200, 0.5, 25.0).value(), 0.0); // after a jump back
        QCOMPARE(meter.tick(6, 7201, 1.0, 30.0).value(), 30.0); // normal again: the nominal rate
    }

    void window_endsOnItsScreen()
    {
        using namespace windowplacement;
        QCOMPARE(sizeForVideo({ 960, 600 }, { 960, 518 }, { 641, 361 }, 0.5F), QSize(320, 262));
        const QRect screen(0, 0, 1280, 800);
        const QRect frame(100, 100, 970, 630); // decorations of 10 and 30
        QCOMPARE(endingWithin(screen, frame, { 960, 600 }, { 640, 480 }), QSize(640, 480));
        QCOMPARE(endingWithin(screen, frame, { 960, 600 }, { 1920, 1080 }), QSize(1170, 670));
        QCOMPARE(endingWithin(screen, frame.translated(900, 0), { 960, 600 }, { 1920, 500 }),
            QSize(960, 500));
    }

    void copy_isWholeOrNotThere_data()
    {
        QTest::addColumn<QString>("destination");
        QTest::addColumn<int>("result");
        QTest::newRow("new") << "new" << int(MediaCopy::Result::Done);
        QTest::newRow("over another") << "other" << int(MediaCopy::Result::Done);
        QTest::newRow("over itself") << "media" << int(MediaCopy::Result::OverwriteFailed);
        QTest::newRow("over itself by a link") << "link" << int(MediaCopy::Result::OverwriteFailed);
        QTest::newRow("over a folder") << "folder" << int(MediaCopy::Result::OverwriteFailed);
        QTest::newRow("nowhere") << "none/new" << int(MediaCopy::Result::CopyFailed);
    }

    void copy_isWholeOrNotThere()
    {
        QFETCH(QString, destination);
        QFETCH(int, result);
        const QTemporaryDir folder;
        const auto write = [&](const char* name, const QByteArray& bytes) {
            QFile file(folder.filePath(name));
            return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
        };
        const QByteArray content(5'000'000, 'v');
        QVERIFY(write("media", content) && write("other", "o"));
        QVERIFY(QFile::link(folder.filePath("media"), folder.filePath("link")));
        QVERIFY(QDir(folder.path()).mkdir("folder"));
        MediaCopy copy(folder.filePath("media"), folder.filePath(destination));
        copy.start();
        QVERIFY(copy.wait(20000));
        QCOMPARE(int(copy.result()), result);
        QFile media(folder.filePath("media"));
        QVERIFY(media.open(QIODevice::ReadOnly) && media.readAll() == content);
        QFile copied(folder.filePath(destination));
        QCOMPARE(copied.open(QIODevice::ReadOnly) && copied.readAll() == content,
            result == int(MediaCopy::Result::Done) || destination == "media"
                || destination == "link");
        QVERIFY(QDir(folder.path()).entryList(QDir::Files).size() <= 4); // no temporary is left
    }
};

QTEST_GUILESS_MAIN(TestModel)
#include "tst_model.moc"
