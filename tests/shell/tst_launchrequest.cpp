#include "launchrequest.h"

#include <QtTest>

class TestLaunchRequest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void commandLine_isReadAndSentOn()
    {
        const QTemporaryDir folder;
        QVERIFY(QDir::setCurrent(folder.path()));
        for (const char* name : { "a.mov", "My b.mov", "My 5 c", "noargs" }) {
            QVERIFY(QFile(name).open(QIODevice::WriteOnly));
        }
        // Words stand between bars, "@" is the folder. What is read: file, start, end.
        // clang-format off
        const struct { QString words, read, sent; } lines[] = {
            { "vantor", "|-1|-1", "vantor" },
            { "vantor|a.mov|1|20", "a.mov|1|20", "vantor|@/a.mov|1|20" },
            { "vantor|a.mov|1.5|0x1", "a.mov|-1|-1", "vantor|@/a.mov|1.5|0x1" },
            { "vantor|My|b.mov", "My b.mov|-1|-1", "vantor|@/My b.mov|-1|-1" },
            { "vantor|My|5|c", "My 5 c|5|-1", "vantor|@/My 5 c|5|-1" },
            { "vantor|gone|1|2", "gone 1 2|1|2", "vantor|gone|1|2" },
            { "vantor|noargs", "noargs|-1|-1", "vantor|@/noargs" },
        };
        // clang-format on
        for (const auto& [words, read, sent] : lines) {
            const QStringList line = words.split('|');
            QCOMPARE(text(LaunchRequest::fromCommandLine(line)), read);
            const QString toSend = LaunchRequest::commandLineToSend(line).join('|');
            QCOMPARE(toSend, QString(sent).replace("@", QDir::currentPath()));
        }
        QCOMPARE(text(LaunchRequest::fromMessage({ "My", "b.mov", "7" })), QString("My|-1|7"));
        QCOMPARE(text(LaunchRequest::fromMessage({ "noargs" })), QString("|-1|-1"));
    }

private:
    static QString text(const LaunchRequest& request)
    {
        return QString("%1|%2|%3").arg(request.file).arg(request.rangeStart).arg(request.rangeEnd);
    }
};

QTEST_GUILESS_MAIN(TestLaunchRequest)
#include "tst_launchrequest.moc"
