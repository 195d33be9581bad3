#include "darktheme.h"

#include <QApplication>
#include <QFile>
#include <QPalette>
#include <QStyleFactory>

namespace {

struct RoleColour {
    QPalette::ColorRole role;
    QRgb colour;
};

constexpr QRgb window = qRgb(45, 45, 48);
constexpr QRgb field = qRgb(25, 25, 25);
constexpr QRgb text = qRgb(208, 208, 208);
constexpr QRgb accent = qRgb(42, 130, 218);

// clang-format off
constexpr RoleColour roleColours[] = {
    {QPalette::Window, window},
    {QPalette::WindowText, text},
    {QPalette::Base, field},
    {QPalette::AlternateBase, window},
    {QPalette::ToolTipBase, text},
    {QPalette::ToolTipText, text},
    {QPalette::Text, text},
    {QPalette::Button, window},
    {QPalette::ButtonText, text},
    {QPalette::BrightText, qRgb(255, 0, 0)},
    {QPalette::Link, accent},
    {QPalette::Highlight, accent},
    {QPalette::HighlightedText, qRgb(0, 0, 0)},
};
// clang-format on

// Without a readable style sheet the palette alone makes the look.
void applyStyleSheet(QApplication& application)
{
    QFile file(QStringLiteral(":/stylesheets/fusiondark.qss"));
    if (file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        application.setStyleSheet(QString::fromLatin1(file.readAll().constData()));
    }
}

} // namespace

void applyDarkTheme(QApplication& application)
{
    Q_INIT_RESOURCE(resources); // a library's are not there by themselves
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QPalette palette;
    for (const RoleColour& entry : roleColours) {
        palette.setColor(entry.role, QColor(entry.colour)); // all colour groups
    }
    QApplication::setPalette(palette);
    applyStyleSheet(application);
    // Without this a sharp screen is given enlarged icons, not their "@2x" variants.
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
}
