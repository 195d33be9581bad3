#pragma once

#include <QDialog>

#include <memory>

struct MediaStats;
namespace Ui {
class MediaInfoDialog;
}

/// Shows facts about the open media, as texts that are ready to be shown. GUI thread.
class MediaInfoDialog : public QDialog {
    Q_OBJECT

public:
    explicit MediaInfoDialog(QWidget* parent = nullptr);
    ~MediaInfoDialog() override;

    /// No media is open.
    void clear();
    void setStats(const MediaStats& stats);
    /// Path of the media.
    void setSource(const QString& path);
    void setFrameRange(const QString& text);
    void setFrameRate(const QString& text);
    void setCurrentTime(const QString& text);
    void setDuration(const QString& text);
    void setNormalSize(const QString& text);
    void setCurrentSize(const QString& text);
    void setVideoCache(const QString& text);
    void setAudioCache(const QString& text);
    void setCachedRange(const QString& text);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void fitSize();

    const std::unique_ptr<Ui::MediaInfoDialog> m_form;
};
