#include "aboutdialog.h"
#include "consolewindow.h"
#include "mediainfodialog.h"
#include "player.h"
#include "preferencesdialog.h"

#include <QtTest>
#include <QtWidgets>

namespace {

using Texts = QMap<QString, QString>; // by where they stand

void addTexts(Texts& texts, QWidget& window)
{
    QList<QWidget*> widgets = window.findChildren<QWidget*>();
    widgets << &window;
    for (const QWidget* widget : qAsConst(widgets)) {
        if (qobject_cast<QDialogButtonBox*>(widget->parent())) {
            continue; // the toolkit's own
        }
        for (const char* property : { "text", "title", "toolTip", "statusTip", "accessibleName",
                 "accessibleDescription", "windowTitle" }) {
            texts[QString("%1 of %2").arg(property, widget->objectName())
                + widget->metaObject()->className()] += widget->property(property).toString();
        }
    }
    for (const QAction* action : window.findChildren<QAction*>()) {
        texts["action " + action->objectName()] = action->text();
        texts["status tip of " + action->objectName()] = action->statusTip();
    }
    for (const QComboBox* combo : window.findChildren<QComboBox*>()) {
        texts["entry of " + combo->objectName()] = combo->itemText(0);
    }
    for (const QListWidget* list : window.findChildren<QListWidget*>()) {
        texts["entry of " + list->objectName()] = list->item(0)->text();
    }
}

} // namespace

// With VANTOR_PSEUDO, a language made of all texts that the translators are given, each in
// brackets.
class TestTranslation : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyTextIsTranslated_andFits()
    {
        QTranslator pseudo;
        QVERIFY(pseudo.load(QStringLiteral(VANTOR_PSEUDO)));
        QVERIFY(QCoreApplication::installTranslator(&pseudo));
        Player player({});
        MediaInfoDialog info;
        PreferencesDialog preferences;
        AboutDialog about("[5]", "[19]");
        ConsoleWindow console;
        Texts texts;
        for (QWidget* window :
            std::initializer_list<QWidget*>{ &player, &info, &preferences, &about, &console }) {
            window->show();
            addTexts(texts, *window);
            for (const QWidget* widget : window->findChildren<QWidget*>()) {
                const auto* label = qobject_cast<const QLabel*>(widget);
                const bool holdsText = (label && !label->wordWrap())
                    || qobject_cast<const QAbstractButton*>(widget)
                    || qobject_cast<const QComboBox*>(widget);
                if (holdsText && widget->isVisible() && !widget->property("flat").toBool()) {
                    QVERIFY2(widget->width() >= widget->minimumSizeHint().width(),
                        qPrintable(widget->property("text").toString()));
                }
            }
        }
        QVERIFY(texts.size() > 150);
        static const QRegularExpression words("[A-Za-z]{2}");
        for (auto text = texts.cbegin(); text != texts.cend(); ++text) {
            const bool told =
                text->contains(words) && *text != "Vantor" && *text != QLatin1String(qVersion());
            QVERIFY2(!told || text->contains('['), qPrintable(text.key() + ": " + *text));
        }
    }
};

QTEST_MAIN(TestTranslation)
#include "tst_translation.moc"
