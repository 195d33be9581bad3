#include "consolewindow.h"

#include <QPlainTextEdit>
#include <QWindow>
#include <QtTest>

class TestConsole : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void escape_closesItWhereItOpensAgain()
    {
        ConsoleWindow console;
        const QRect place(50, 60, 400, 250);
        console.show();
        console.setGeometry(place);
        QTest::keyClick(console.findChild<QPlainTextEdit*>(), Qt::Key_Escape);
        QVERIFY(!console.isVisible());
        console.setGeometry(0, 0, 300, 200);
        console.error("a");
        QCOMPARE(console.geometry(), place);
        // Popping up took the keyboard from the player where it had been shown by hand before.
        QVERIFY(console.windowHandle()->property("_q_showWithoutActivating").toBool());
    }
};

QTEST_MAIN(TestConsole)
#include "tst_console.moc"
