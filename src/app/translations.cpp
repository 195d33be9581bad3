#include "translations.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

#include <memory>

namespace {

bool load(const QString& name, const QString& folder)
{
    auto translator = std::make_unique<QTranslator>(QCoreApplication::instance());
    if (!translator->load(QLocale::system(), name, QStringLiteral("_"), folder)) {
        return false;
    }
    return QCoreApplication::installTranslator(translator.release()); // child of the application
}

void loadForSystem()
{
    if (QLocale::system().uiLanguages().value(0).startsWith(QLatin1String("en"))) {
        return; // the texts as they are; the languages after it are second choices
    }
    // Beside the program where it was built, else where it is installed.
    const QString here = QCoreApplication::applicationDirPath();
    for (const char* folder : { "/translations", "/../share/vantor/translations" }) {
        if (load(QStringLiteral("vantor"), here + QLatin1String(folder))) {
            // The toolkit's own texts, which alone would stand among English ones.
            load(QStringLiteral("qtbase"), QLibraryInfo::location(QLibraryInfo::TranslationsPath));
            return;
        }
    }
}

} // namespace

void loadTranslations()
{
    loadForSystem();
    // Films run from left to right in every language, and so do timelines and buttons.
    if (qobject_cast<QGuiApplication*>(QCoreApplication::instance())) { // else no window is shown
        QGuiApplication::setLayoutDirection(Qt::LeftToRight);
    }
}
