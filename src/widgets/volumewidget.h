#pragma once

#include <QIcon>
#include <QWidget>

class QPushButton;
class ZSlider;

/// Volume slider with a mute button. The volume in percent and the muted state are the settings'
/// own values, read and written here directly.
class VolumeWidget : public QWidget {
    Q_OBJECT

public:
    static constexpr int maxVolume = 150; // percent

    explicit VolumeWidget(QWidget* parent = nullptr);

    /// Stores `volume`, kept within 0 and maxVolume, and moves the slider there. No signal unless
    /// that unmutes.
    void setVolume(int volume);
    [[nodiscard]] int volume() const;

    /// Nothing happens unless the state changes. Muting keeps the stored volume for the time after.
    void setMuted(bool muted);
    [[nodiscard]] bool isMuted() const;

public Q_SLOTS:
    /// Moving the slider unmutes.
    void onSliderValueChange(int value);
    void toggleMute();

Q_SIGNALS:
    /// The volume to be heard from now on: 0 while muted.
    void volumeChanged(int volume);

private:
    void moveSlider(int value);

    QIcon m_volumeIcon;
    QIcon m_muteIcon;
    ZSlider* m_slider; // child
    QPushButton* m_muteButton; // child
    bool m_updating = false; // the widget itself is moving the slider
};
