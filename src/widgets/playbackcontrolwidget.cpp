#include "playbackcontrolwidget.h"

#include "controlicon.h"

#include <QHBoxLayout>
#include <QPushButton>

namespace {

constexpr int buttonSize = 30; // pixels
constexpr int iconSize = 16; // pixels; the size the icons are drawn for
constexpr int verticalMargin = 6;
constexpr int buttonSpacing = 4;

struct Button {
    const char* id; // object name
    const char* icon;
    const char* name; // read to those who do not see the icon
    void (PlaybackControlWidget::*slot)();
};

// From left to right.
// clang-format off
constexpr Button buttons[] = {
    {"seekStart", ":/icons/seekstart", QT_TRANSLATE_NOOP("PlaybackControlWidget", "Seek to Start"), &PlaybackControlWidget::seekStart},
    {"stepBackward", ":/icons/stepbwd", QT_TRANSLATE_NOOP("PlaybackControlWidget", "Step Backward"), &PlaybackControlWidget::stepBackward},
    {"play", ":/icons/play", QT_TRANSLATE_NOOP("PlaybackControlWidget", "Play/Pause"), &PlaybackControlWidget::playForward},
    {"stepForward", ":/icons/stepfwd", QT_TRANSLATE_NOOP("PlaybackControlWidget", "Step Forward"), &PlaybackControlWidget::stepForward},
    {"seekEnd", ":/icons/seekend", QT_TRANSLATE_NOOP("PlaybackControlWidget", "Seek to End"), &PlaybackControlWidget::seekEnd},
};
// clang-format on

QPushButton* makeButton(const Button& description, PlaybackControlWidget* parent)
{
    auto* button = new QPushButton(parent);
    button->setObjectName(QLatin1String(description.id));
    button->setAccessibleName(PlaybackControlWidget::tr(description.name));
    button->setToolTip(button->accessibleName());
    button->setIcon(controlIcon(QLatin1String(description.icon)));
    button->setIconSize(QSize(iconSize, iconSize));
    button->setFixedSize(buttonSize, buttonSize);
    QSizePolicy policy = button->sizePolicy();
    policy.setControlType(QSizePolicy::DefaultType);
    button->setSizePolicy(policy);
    QObject::connect(button, &QPushButton::clicked, parent, description.slot);
    return button;
}

} // namespace

PlaybackControlWidget::PlaybackControlWidget(QWidget* parent)
    : QWidget(parent)
    , m_playIcon(controlIcon(QStringLiteral(":/icons/play")))
    , m_pauseIcon(controlIcon(QStringLiteral(":/icons/pause")))
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, verticalMargin, 0, verticalMargin);
    layout->setSpacing(buttonSpacing);
    layout->addStretch();
    for (const Button& description : buttons) {
        layout->addWidget(makeButton(description, this));
    }
    layout->addStretch();
    m_playButton = findChild<QPushButton*>(QStringLiteral("play"));
}

void PlaybackControlWidget::setPlaying(bool playing)
{
    m_playButton->setIcon(playing ? m_pauseIcon : m_playIcon);
}

void PlaybackControlWidget::playForward()
{
    Q_EMIT playForwardClicked();
}

void PlaybackControlWidget::playBackward()
{
    Q_EMIT playBackwardClicked();
}

void PlaybackControlWidget::stepForward()
{
    Q_EMIT stepForwardClicked();
}

void PlaybackControlWidget::stepBackward()
{
    Q_EMIT stepBackwardClicked();
}

void PlaybackControlWidget::seekStart()
{
    Q_EMIT seekStartClicked();
}

void PlaybackControlWidget::seekEnd()
{
    Q_EMIT seekEndClicked();
}
