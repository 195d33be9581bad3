#include "consolewindow.h"

#include <QComboBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextBlock>
#include <QTextLayout>
#include <QWindow>
#include <QtTest>

class TestConsole : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_console = std::make_unique<ConsoleWindow>();
        m_display = m_console->findChild<QPlainTextEdit*>();
    }

    void level_decidesWhatPopsUp()
    {
        int level = 0;
        for (const char* name : { "Disabled", "Errors Only", "Errors and Warnings",
                 "Errors, Warnings and Info", "Any Output" }) {
            m_console->setShowOnLevel(level);
            m_console->setShowOnLevel(5); // no level
            QCOMPARE(m_console->showOnLevel(), level);
            QCOMPARE(m_console->findChild<QComboBox*>()->currentText(), name);
            int kind = 0;
            for (const char* slot : { "error", "warning", "info", "output" }) {
                QMetaObject::invokeMethod(m_console.get(), slot, Q_ARG(QString, "words"));
                QVERIFY2(m_console->isVisible() == (level > kind || kind == 3), name);
                m_console->close();
                ++kind;
            }
            ++level;
        }
        const char lines[] = "ERROR: words\nWARNING: words\nINFO: words\nwords\n";
        QVERIFY(m_display->toPlainText().startsWith(lines));
    }

    void prefix_aloneIsColoured()
    {
        using Line = std::pair<const char*, const char*>;
        for (const auto& [line, coloured] :
            { Line("ERROR: a ERROR: b", "0 7 #ff0000"), Line("WARNING: a", "0 9 #ffff00"),
                Line("INFO: a", "0 6 #00ffff"), Line("an ERROR: b", "") }) {
            m_display->setPlainText(line);
            QString found; // start, length, colour
            for (const auto& part : m_display->document()->firstBlock().layout()->formats()) {
                found += QString("%1 %2 ").arg(part.start).arg(part.length)
                    + part.format.foreground().color().name();
            }
            QCOMPARE(found, coloured);
        }
    }

    void escape_closesItWhereItOpensAgain()
    {
        const QRect place(50, 60, 400, 250);
        m_console->show();
        m_console->setGeometry(place);
        QTest::keyClick(m_display, Qt::Key_Escape);
        QVERIFY(!m_console->isVisible());
        m_console->setGeometry(0, 0, 300, 200);
        m_console->error("a");
        QCOMPARE(m_console->geometry(), place);
        // Popping up took the keyboard from the player where it had been shown by hand before.
        QVERIFY(m_console->windowHandle()->property("_q_showWithoutActivating").toBool());
    }

private:
    std::unique_ptr<ConsoleWindow> m_console;
    QPlainTextEdit* m_display = nullptr;
};

QTEST_MAIN(TestConsole)
#include "tst_console.moc"
