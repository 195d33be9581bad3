#include "mediainfodialog.h"

#include "mediastats.h"
#include "ui_mediainfodialog.h"

#include <QFileInfo>
#include <QScreen>

#include <algorithm>

namespace {

constexpr int characters = 60; // of a path that fit into a line

} // namespace

MediaInfoDialog::MediaInfoDialog(QWidget* parent)
    : QDialog(parent)
    , m_form(std::make_unique<Ui::MediaInfoDialog>())
{
    m_form->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    for (QWidget* of : { m_form->videoCacheLabel, m_form->videoCache, m_form->audioCacheLabel,
             m_form->audioCache, m_form->cachedRangeLabel, m_form->cachedRange }) {
        of->hide();
    }
    clear();
}

MediaInfoDialog::~MediaInfoDialog() = default;

void MediaInfoDialog::clear()
{
    setStats({});
    m_form->filename->setText(QStringLiteral("<b>%1</b>").arg(tr("No Media")));
}

void MediaInfoDialog::setStats(const MediaStats& stats)
{
    setSource(stats.source);
    setFrameRange(stats.frameRange);
    setFrameRate(stats.frameRate);
    setCurrentTime(stats.currentTime);
    setDuration(stats.duration);
    setNormalSize(stats.normalSize);
    setCurrentSize(stats.currentSize);
    setVideoCache(stats.videoCache);
    setAudioCache(stats.audioCache);
    setCachedRange(stats.cachedRange);
}

void MediaInfoDialog::setSource(const QString& path)
{
    const QString name = QFileInfo(path).fileName();
    m_form->filename->setText(QStringLiteral("<b>%1</b>").arg(name.toHtmlEscaped()));
    m_form->source->setText(path);
    m_form->source->setToolTip(path);
    layout()->activate(); // else it knows nothing of the new text yet
    fitSize();
}

void MediaInfoDialog::setFrameRange(const QString& text)
{
    m_form->frameRange->setText(text);
}

void MediaInfoDialog::setFrameRate(const QString& text)
{
    m_form->frameRate->setText(text);
}

void MediaInfoDialog::setCurrentTime(const QString& text)
{
    m_form->currentTime->setText(text);
}

void MediaInfoDialog::setDuration(const QString& text)
{
    m_form->duration->setText(text);
}

void MediaInfoDialog::setNormalSize(const QString& text)
{
    m_form->normalSize->setText(text);
}

void MediaInfoDialog::setCurrentSize(const QString& text)
{
    m_form->currentSize->setText(text);
}

void MediaInfoDialog::setVideoCache(const QString& text)
{
    m_form->videoCache->setText(text);
}

void MediaInfoDialog::setAudioCache(const QString& text)
{
    m_form->audioCache->setText(text);
}

void MediaInfoDialog::setCachedRange(const QString& text)
{
    m_form->cachedRange->setText(text);
}

void MediaInfoDialog::resizeEvent(QResizeEvent* event)
{
    QDialog::resizeEvent(event);
    fitSize();
}

// A long path takes more lines than the layout asks for by itself, and a long name without spaces
// more width, of which there is no more than the screen has.
void MediaInfoDialog::fitSize()
{
    const int wanted = std::max(
        characters * fontMetrics().averageCharWidth(), layout()->totalMinimumSize().width());
    setMinimumWidth(std::min(wanted, screen()->availableGeometry().width()));
    setMinimumHeight(layout()->totalHeightForWidth(width()));
}
