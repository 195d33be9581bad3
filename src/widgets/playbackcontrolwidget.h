#pragma once

#include <QIcon>
#include <QWidget>

class QPushButton;

/// The row of transport buttons. It only reports clicks; what is playing is told to it by
/// setPlaying().
class PlaybackControlWidget : public QWidget {
    Q_OBJECT

public:
    explicit PlaybackControlWidget(QWidget* parent = nullptr);

    /// Shows the pause icon on the play button while playing, the play icon otherwise.
    void setPlaying(bool playing);

public Q_SLOTS:
    void playForward();
    void playBackward();
    void stepForward();
    void stepBackward();
    void seekStart();
    void seekEnd();

Q_SIGNALS:
    void playForwardClicked();
    void playBackwardClicked();
    void stepForwardClicked();
    void stepBackwardClicked();
    void seekStartClicked();
    void seekEndClicked();

private:
    QIcon m_playIcon;
    QIcon m_pauseIcon;
    QPushButton* m_playButton = nullptr; // child
};
