#pragma once

class QVBoxLayout;
class QWidget;

/// What the player's window is made of; not owned.
struct PlayerWidgets {
    QWidget* timeline;
    QWidget* rangeTimeline;
    QWidget* viewer;
    QWidget* controls;
    QWidget* volume;
};

/// Places the widgets of the player's window: the video view in the middle, the timelines above or
/// below it, the range timeline always the nearer one, and the row of controls at the bottom.
class PlayerLayout {
public:
    /// Makes the layout of `window`.
    PlayerLayout(QWidget* window, const PlayerWidgets& widgets);

    void setTimelineAtTop(bool top);
    void setRangeTimelineAtTop(bool top);

private:
    QWidget* m_timeline;
    QWidget* m_rangeTimeline;
    QVBoxLayout* m_upper; // above the video; belongs to the window
    QVBoxLayout* m_lower; // below it
};
