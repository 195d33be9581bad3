#include "singleapplication.h"

#include <QFileOpenEvent>
#include <QSocketNotifier>
#include <QtTest>

#include <csignal>
#include <cstdio>

// This program is test and instance in one: with arguments it is an instance that tells on its
// output what happens to it and does what it is told on its input.
static int runInstance(int argc, char** argv)
{
    SingleApplication application(argc, argv, "vantorUniqueKey");
    const auto say = [](const QStringList& words) {
        std::puts(words.join('|').toUtf8().constData());
        std::fflush(stdout);
    };
    if (application.isRunning()) {
        say({ application.sendMessage(application.arguments().mid(1), false) ? "sent" : "lost" });
        return 0;
    }
    QObject::connect(&application, &SingleApplication::messageAvailable, say);
    QSocketNotifier input(0, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &application, [&] {
        char line[200] = {};
        if (read(0, line, sizeof line - 1) <= 0) {
            application.quit();
        } else if (qstrcmp(line, "stop") == 0) {
            application.stopListening();
            say({ "stopped" });
        } else {
            QCoreApplication::postEvent(&application, new QFileOpenEvent(QString(line)));
        }
    });
    say({ "first" });
    return application.exec();
}

class Instance : public QProcess {
public:
    ~Instance() override { end(); }

    void launch(const QString& words)
    {
        const QString list = words.isEmpty() ? "-" : "-|" + words;
        start(QCoreApplication::applicationFilePath(), list.split('|'));
    }

    void end()
    {
        closeWriteChannel();
        waitForFinished();
    }

    // The next line of its output; empty when none comes.
    QString line(int withinMs = 10000)
    {
        return canReadLine() || waitForReadyRead(withinMs) ? readLine().trimmed() : QString();
    }
};

class TestSingleApplication : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // Steps of instances A, B and C: "A+ WORDS" starts one with these words between bars, "A! TEXT"
    // writes to its input, "A# SIGNAL" sends it a signal, "A- " ends it; "> LINE" is what it says
    // after that, "A > LINE" what it says next.
    void launches_data()
    {
        QTest::addColumn<QString>("steps");
        for (const QString& words : { QString("a b|1|2"), QString("é.mov|1"), QString("a||2"),
                 QString("a-_???_-b"), QString(127, 'x'), QString(128, 'x') }) {
            QTest::addRow("%s", qPrintable(words))
                << "A+ > first; B+ " + words + " > sent; A > " + words;
        }
        QTest::newRow("no words") << "A+ > first; B+ > sent; A > noargs";
        // A busy instance holds up nobody, and hears of it all later.
        const QString busy = "A+ > first; A# 19; B+ a > sent; C+ %1 > sent; A# 18; A > %2; A > ";
        QTest::newRow("two within one poll") << busy.arg("b", "b");
        QTest::newRow("block, then socket") << busy.arg("é", "a; A > é");
        QTest::newRow("killed") << "A+ > first; A# 9; A-; B+ > first; C+ é > sent; B > é";
        // The end of the old instance takes nothing from the new one.
        QTest::newRow("while ending") << "A+ > first; A! stop > stopped; A! é > é; B+ > first; A-;"
                                         "C+ a > sent; B > a; C-; C+ é > sent; B > é";
        QTest::newRow("file-open events") << "A+ > first; A! a b > a b; A! é > é";
    }

    void launches()
    {
        QFETCH(QString, steps);
        std::map<QChar, Instance> instances;
        for (const QString& step : steps.split(';')) {
            const QString order = step.section('>', 0, 0).trimmed();
            const QString rest = order.mid(3);
            Instance& instance = instances[order[0]];
            // clang-format off
            switch (order.size() > 1 ? order[1].toLatin1() : 0) {
            case '+': instance.launch(rest); break;
            case '!': instance.write(rest.toUtf8()); break;
            case '#': ::kill(pid_t(instance.processId()), rest.toInt()); break;
            case '-': instance.end(); break;
            }
            // clang-format on
            if (step.contains('>')) {
                const QString line = step.section('>', 1).trimmed();
                QCOMPARE(line.isEmpty() ? instance.line(400) : instance.line(), line); // two polls
            }
        }
    }

    void launchesAtTheSameMoment_findOneFirst()
    {
        std::array<Instance, 6> instances;
        std::for_each(instances.begin(), instances.end(), [](auto& each) { each.launch(""); });
        QStringList said;
        for (Instance& instance : instances) {
            said += instance.line();
        }
        said.sort();
        QCOMPARE(said.join(' '), QString("first sent sent sent sent sent"));
    }

    // Nothing is left that could mislead a later launch.
    void cleanupTestCase()
    {
        QCOMPARE(QDir::temp().entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot),
            QStringList());
    }
};

int main(int argc, char** argv)
{
    if (argc > 1 && qstrcmp(argv[1], "-") == 0) {
        return runInstance(argc, argv);
    }
    QCoreApplication application(argc, argv);
    TestSingleApplication test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_singleapplication.moc"
