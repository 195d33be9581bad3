#include "mediainfodialog.h"

#include "mediastats.h"
#include "ui_mediainfodialog.h"

#include <QFileInfo>

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
