#include "translations.h"

#include <QCoreApplication>
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

} // namespace

void loadTranslations()
{
    load(QStringLiteral("qtbase"), QLibraryInfo::location(QLibraryInfo::TranslationsPath));
    // Beside the program where it was built, else where it is installed.
    const QString here = QCoreApplication::applicationDirPath();
    for (const char* folder : { "/translations", "/../share/vantor/translations" }) {
        if (load(QStringLiteral("vantor"), here + QLatin1String(folder))) {
            return;
        }
    }
}
