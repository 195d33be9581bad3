#include "bookmarks.h"
#include "bookmarksfile.h"
#include "mousescrubber.h"

#include <QtTest>

#include <sys/stat.h>

// The record of bookmarks, its file, and the scrub over the video.
class TestBookmarks : public QObject {
    Q_OBJECT

    QTemporaryDir m_folder;

    [[nodiscard]] QString written(const QByteArray& text) const
    {
        QFile file(m_folder.filePath("test.bmk"));
        return file.open(QIODevice::WriteOnly) && file.write(text) == text.size() ? file.fileName()
                                                                                  : QString();
    }
    static QString inWords(const Bookmarks& bookmarks)
    {
        QStringList words;
        for (const int frame : bookmarks.frames()) {
            words += QString::number(frame);
        }
        for (const RangeBookmark& range : bookmarks.ranges()) {
            words += QString("%1-%2:%3").arg(range.start).arg(range.end).arg(range.name);
        }
        return words.join(' ');
    }

private Q_SLOTS:
    void file_isReadTolerantly()
    {
        // clang-format off
        const std::pair<QByteArray, const char*> rows[] = {
            { "frames=\"12,40,97,\"\nranges=\"10,20,10 - 20\", \"3,5,x\"", "12 40 97 3-5:x 10-20:10 - 20" },
            { "frames=\"5,,abc,-3,5,9\"", "5 9" },
            { "frames=12,40", "12 40" }, // unquoted
            { "frames=\"99999999999,7\"\nranges=\"1,99999999999,x\"", "7" },
            { "ranges=\"10,20\", \"1,2,\"", "" }, // no name
            { "ranges=\"10,20,a,,b\", \"1,2,c,d\"", "1-2:c,d 10-20:a,b" },
            { "ranges=\"10,20,first\", \"10,20,second\"", "10-20:first" },
            { "ranges=\"5,20,c\", \"5,8,b\", \"1,10,a\", \"-1,4,n\"", "1-10:a 5-8:b 5-20:c" },
            { "ranges=\"1,2,\\xe9\xc3\xa9\"", "1-2:\xc3\xa9\xc3\xa9" }, // the toolkit's escapes and UTF-8
            { QByteArray("\0\1\2\xff[main\n=", 10), "" },
        };
        // clang-format on
        for (const auto& [keys, expected] : rows) {
            Bookmarks bookmarks;
            bookmarks.addFrame(1);
            bookmarksfile::read(bookmarks, written("[main]\n" + keys));
            QCOMPARE(inWords(bookmarks), QString(expected));
        }
    }

    void file_comesBackAsSaved()
    {
        Bookmarks bookmarks;
        bookmarks.mediaPath = QString::fromUtf8("/films/a,b \"c\"/\xc3\xa9\xe4\xb8\xad.mov");
        for (const int frame : { 97, 12, 40, -1, 12 }) {
            bookmarks.addFrame(frame);
        }
        bookmarks.addRange(10, 20, "10 - 20");
        bookmarks.addRange(10, 20, "again");
        bookmarks.addRange(1, 300, "a, b");
        bookmarks.setCurrentRange(1, 300);
        const QString path = written("[other]\nkept=1\n");
        QVERIFY(bookmarksfile::write(bookmarks, path));
        Bookmarks found;
        bookmarksfile::read(found, path);
        QCOMPARE(inWords(found), QString("12 40 97 1-300:a, b 10-20:10 - 20"));
        QCOMPARE(found.mediaPath, bookmarks.mediaPath);
        QCOMPARE(found.currentRangeEnd(), 300);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray text = file.readAll();
        QVERIFY(text.contains("frames=\"12,40,97,\"") && text.contains("kept=1"));

        const QString pipe = m_folder.filePath("pipe.bmk"); // which nobody writes to
        QCOMPARE(mkfifo(qPrintable(pipe), S_IRUSR | S_IWUSR), 0);
        for (const QString& unreadable : { m_folder.filePath("none.bmk"), pipe }) {
            bookmarksfile::read(found, unreadable);
            QCOMPARE(inWords(found), QString());
            QCOMPARE(found.mediaPath, bookmarks.mediaPath);
        }
        QVERIFY(!bookmarksfile::write(bookmarks, m_folder.filePath("none/test.bmk")));
        qputenv("TMPDIR", "/dev/full"); // no room for temporary files
        QVERIFY(bookmarksfile::write(bookmarks, path));
        QVERIFY(bookmarksfile::write(bookmarks, m_folder.filePath("new.bmk")));
        QCOMPARE(QDir(m_folder.path()).entryList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot),
            QStringList());
        qunsetenv("TMPDIR");
    }

    void cycling_wrapsRoundAlsoFromBetween()
    {
        Bookmarks bookmarks;
        QVERIFY(!bookmarks.cycledFrame(1, false) && !bookmarks.cycledRange(1, 2, true));
        bookmarks.addFrame(10);
        bookmarks.addFrame(20);
        QCOMPARE(bookmarks.cycledFrame(15, true).value(), 10);
        QCOMPARE(bookmarks.cycledFrame(5, true).value(), 20);
        for (const auto& [start, end] : { std::pair(5, 20), std::pair(1, 10), std::pair(5, 8) }) {
            bookmarks.addRange(start, end, "r");
        }
        const auto next = [&](int start, int end, bool backward) {
            const auto range = bookmarks.cycledRange(start, end, backward);
            return std::pair(range->start, range->end);
        };
        QCOMPARE(next(2, 3, false), std::pair(1, 10));
        QCOMPARE(next(2, 3, true), std::pair(5, 20));
        QCOMPARE(next(5, 8, false), std::pair(5, 20));
        QCOMPARE(next(5, 20, false), std::pair(1, 10));
    }

    void scrub_goesOnBeyondTheScreen()
    {
        const auto gear = MouseScrubber::pixelsPerFrame;
        QVERIFY(gear(true, false) == 4 && gear(false, true) == 22 && gear(true, true) == 10);
        MouseScrubber scrubber;
        scrubber.begin(30);
        auto step = scrubber.move(0, 10, true, 1000); // to the left, out of the screen
        QCOMPARE(step.frames, -3);
        QCOMPARE(step.warpTo.value(), 998);
        QCOMPARE(scrubber.move(0, 10, true, 1000).frames, 0); // older than the warp
        QCOMPARE(scrubber.move(988, 10, true, 1000).frames, -1);
        step = scrubber.move(999, 10, true, 1000);
        QCOMPARE(step.warpTo.value(), 1);
        QCOMPARE(step.frames, 1);
        QVERIFY(!scrubber.move(1500, 10, false, 1000).warpTo);
    }
};

QTEST_GUILESS_MAIN(TestBookmarks)
#include "tst_bookmarks.moc"
