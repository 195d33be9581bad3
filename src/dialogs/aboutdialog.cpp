#include "aboutdialog.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

namespace {

constexpr int iconSize = 64; // pixels
constexpr int margin = 14;
constexpr int gap = 16; // between icon, texts and button
constexpr int rowGap = 6;

} // namespace

AboutDialog::AboutDialog(
    const QString& ffmpegVersion, const QString& portAudioVersion, QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(tr("About Vantor"));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);

    auto* icon = new QLabel(this);
    icon->setPixmap(QIcon(QStringLiteral(":icons/application.png")).pixmap(iconSize, iconSize));
    auto* title = new QLabel(titleText(), this);
    title->setObjectName(QStringLiteral("title"));
    auto* versions = new QFormLayout;
    versions->setVerticalSpacing(rowGap);
    for (const auto& [name, version] : { std::pair(tr("Qt:"), QString::fromLatin1(qVersion())),
             std::pair(tr("FFmpeg:"), ffmpegVersion),
             std::pair(tr("PortAudio:"), portAudioVersion) }) {
        auto* label = new QLabel(version, this);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        versions->addRow(name, label);
    }
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    buttons->button(QDialogButtonBox::Close)->setIcon({}); // the style's is black on dark
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* texts = new QVBoxLayout;
    texts->addWidget(title);
    texts->addLayout(versions);
    auto* top = new QHBoxLayout;
    top->setSpacing(gap);
    top->addWidget(icon, 0, Qt::AlignTop);
    top->addLayout(texts, 1);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(margin, margin, margin, margin);
    column->setSpacing(gap);
    column->setSizeConstraint(QLayout::SetFixedSize);
    column->addLayout(top);
    column->addWidget(buttons);
}

QString AboutDialog::titleText() const
{
    return QStringLiteral("<p style='font-size:x-large'><b>Vantor</b></p><p>%1</p>")
        .arg(tr("Version %1").arg(QCoreApplication::applicationVersion().toHtmlEscaped()));
}
