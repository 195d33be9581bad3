#include "mediacopy.h"
#include "recentlist.h"

#include <QtTest>

// What the window keeps and copies, without a window.
class TestModel : public QObject {
    Q_OBJECT

private Q_SLOTS:
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

    void copy_isWholeOrNotThere()
    {
        const QTemporaryDir folder;
        const auto file = [&folder](const char* name) {
            auto opened = std::make_unique<QFile>(folder.filePath(name));
            return opened->open(QIODevice::ReadWrite) ? std::move(opened) : nullptr;
        };
        const QByteArray content(5'000'000, 'v');
        QVERIFY(file("media")->write(content) > 0 && file("other")->write("o") > 0);
        QVERIFY(QFile::link(folder.filePath("media"), folder.filePath("link")));
        QVERIFY(QDir(folder.path()).mkdir("folder"));
        using Result = MediaCopy::Result;
        const std::pair<const char*, Result> rows[] = { { "new", Result::Done },
            { "other", Result::Done }, { "media", Result::OverwriteFailed },
            { "link", Result::OverwriteFailed }, { "folder", Result::OverwriteFailed },
            { "none/new", Result::CopyFailed } };
        for (const auto& [destination, result] : rows) {
            MediaCopy copy(folder.filePath("media"), folder.filePath(destination));
            copy.start();
            QVERIFY2(copy.wait(20000) && copy.result() == result, destination);
            QVERIFY(file("media")->readAll() == content);
            QVERIFY(result != Result::Done || file(destination)->readAll() == content);
        }
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files).size(), 4); // no temporary is left
    }
};

QTEST_GUILESS_MAIN(TestModel)
#include "tst_model.moc"
