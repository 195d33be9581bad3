#include "volumewidget.h"

#include "controlicon.h"
#include "settings.h"
#include "zslider.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QScopedValueRollback>

#include <algorithm>

namespace {

constexpr int normalVolume = 100; // percent
constexpr int muteButtonSize = 19; // pixels
constexpr int iconSize = 16; // pixels; the size the icons are drawn for
constexpr int buttonSpacing = 4;

} // namespace

VolumeWidget::VolumeWidget(QWidget* parent)
    : QWidget(parent)
    , m_volumeIcon(controlIcon(QStringLiteral(":/icons/volume")))
    , m_muteIcon(controlIcon(QStringLiteral(":/icons/mute")))
    , m_slider(new ZSlider(Qt::Horizontal, this))
    , m_muteButton(new QPushButton(this))
{
    Settings& stored = settings();
    if (stored.volume > maxVolume) {
        stored.volume = normalVolume;
    }
    m_slider->setRange(0, maxVolume);
    m_slider->setAccessibleName(tr("Volume"));
    m_muteButton->setAccessibleName(tr("Mute"));
    m_muteButton->setToolTip(tr("Mute"));
    m_muteButton->setFixedSize(muteButtonSize, muteButtonSize);
    m_muteButton->setIconSize(QSize(iconSize, iconSize));
    m_muteButton->setFlat(true);
    m_muteButton->setStyleSheet(QStringLiteral("QPushButton:flat:pressed { border: none; }"));

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(buttonSpacing);
    layout->addWidget(m_muteButton);
    layout->addWidget(m_slider);

    // setMuted() acts on a change only, and icon and slider must be set even where nothing changes.
    const bool muted = stored.muted;
    stored.muted = !muted;
    setMuted(muted);

    connect(m_slider, &ZSlider::valueChanged, this, &VolumeWidget::onSliderValueChange);
    connect(m_muteButton, &QPushButton::clicked, this, &VolumeWidget::toggleMute);
}

void VolumeWidget::setVolume(int volume)
{
    settings().volume = std::clamp(volume, 0, maxVolume);
    m_slider->setValue(settings().volume);
}

int VolumeWidget::volume() const
{
    return settings().volume;
}

void VolumeWidget::setMuted(bool muted)
{
    Settings& stored = settings();
    if (muted == stored.muted) {
        return;
    }
    stored.muted = muted;
    m_muteButton->setIcon(muted ? m_muteIcon : m_volumeIcon);
    const int audible = muted ? 0 : stored.volume;
    moveSlider(audible);
    Q_EMIT volumeChanged(audible);
}

bool VolumeWidget::isMuted() const
{
    return settings().muted;
}

void VolumeWidget::onSliderValueChange(int value)
{
    Settings& stored = settings();
    if (m_updating || (!stored.muted && value == stored.volume)) {
        return;
    }
    stored.volume = value;
    if (stored.muted) {
        setMuted(false);
    } else {
        Q_EMIT volumeChanged(value);
    }
}

void VolumeWidget::toggleMute()
{
    setMuted(!isMuted());
}

void VolumeWidget::moveSlider(int value)
{
    const QScopedValueRollback<bool> guard(m_updating, true);
    m_slider->setValue(value);
}
