#include "preferencesdialog.h"

#include "settings.h"
#include "ui_preferencesdialog.h"

#include <QMessageBox>

#include <algorithm>
#include <initializer_list>

namespace {

constexpr int leastCacheMb = 256;
constexpr int mostCacheMb = 4096; // the form would allow more
constexpr int mostRecentFiles = 10;

// Gives all the widest one's width, so that columns run through several group boxes.
void alignWidths(std::initializer_list<QWidget*> column)
{
    int widest = 0;
    for (const QWidget* widget : column) {
        widest = std::max(widest, widget->sizeHint().width());
    }
    for (QWidget* widget : column) {
        widget->setMinimumWidth(widest);
    }
}

} // namespace

PreferencesDialog::PreferencesDialog(QWidget* parent)
    : QDialog(parent)
    , m_form(std::make_unique<Ui::PreferencesDialog>())
{
    m_form->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    // A click, not a change: filling the form must not warn.
    connect(m_form->openMediaInNewPlayers, &QCheckBox::clicked, this,
        &PreferencesDialog::openInNewPlayersWarning);
    loadSettings();
    alignWidths({ m_form->cacheSizeLabel, m_form->trailingCacheLabel, m_form->recentFilesLabel,
        m_form->recentBookmarkFilesLabel });
    alignWidths({ m_form->cacheSize, m_form->trailingCache, m_form->recentFiles,
        m_form->recentBookmarkFiles });
}

PreferencesDialog::~PreferencesDialog() = default;

void PreferencesDialog::loadSettings()
{
    const Settings& values = settings();
    m_form->cacheSize->setRange(leastCacheMb, mostCacheMb);
    m_form->cacheSize->setValue(values.cacheSize);
    m_form->trailingCache->setValue(values.cacheTrailingPct);
    m_form->recentFiles->setRange(0, mostRecentFiles);
    m_form->recentFiles->setValue(values.numRecentFiles);
    m_form->recentBookmarkFiles->setRange(0, mostRecentFiles);
    m_form->recentBookmarkFiles->setValue(values.numRecentBookmarkFiles);
    m_form->openMediaInNewPlayers->setChecked(values.openMediaInNewPlayers);
    m_form->resizeToFit->setChecked(values.resizeToFit);
    m_form->continuePlayingAfterSeek->setChecked(values.continuePlayingAfterSeek);
    m_form->endlessMouseScrub->setChecked(values.endlessMouseScrub);
    m_form->port->setValue(values.tcpPort);
}

void PreferencesDialog::openInNewPlayersWarning()
{
    if (!m_form->openMediaInNewPlayers->isChecked()) {
        return;
    }
    QMessageBox warning(QMessageBox::Warning, tr("Multiple Players Warning"),
        tr("A separate cache exists for each player"), QMessageBox::Ok, this);
    warning.setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    warning.exec();
}

int PreferencesDialog::cacheSize() const
{
    return m_form->cacheSize->value();
}

float PreferencesDialog::cacheTrailingPct() const
{
    return static_cast<float>(m_form->trailingCache->value());
}

int PreferencesDialog::numRecentFiles() const
{
    return m_form->recentFiles->value();
}

int PreferencesDialog::numRecentBookmarkFiles() const
{
    return m_form->recentBookmarkFiles->value();
}

bool PreferencesDialog::openMediaInNewPlayers() const
{
    return m_form->openMediaInNewPlayers->isChecked();
}

bool PreferencesDialog::resizeToFit() const
{
    return m_form->resizeToFit->isChecked();
}

bool PreferencesDialog::continuePlayingAfterSeek() const
{
    return m_form->continuePlayingAfterSeek->isChecked();
}

bool PreferencesDialog::endlessMouseScrub() const
{
    return m_form->endlessMouseScrub->isChecked();
}

int PreferencesDialog::tcpPort() const
{
    return m_form->port->value();
}
