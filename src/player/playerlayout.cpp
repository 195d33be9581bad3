#include "playerlayout.h"

#include <QHBoxLayout>
#include <QVBoxLayout>
#include <QWidget>

namespace {

constexpr int rowMargin = 6; // pixels, left and right of the controls

QVBoxLayout* barelyLaidOut(QVBoxLayout* layout)
{
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    return layout;
}

QHBoxLayout* controlsRow(const PlayerWidgets& widgets)
{
    auto* row = new QHBoxLayout;
    row->setContentsMargins(rowMargin, 0, rowMargin, 0);
    row->addSpacing(widgets.volume->maximumWidth()); // keeps the buttons in the middle
    row->addStretch();
    row->addWidget(widgets.controls);
    row->addStretch();
    row->addWidget(widgets.volume);
    return row;
}

} // namespace

PlayerLayout::PlayerLayout(QWidget* window, const PlayerWidgets& widgets)
    : m_timeline(widgets.timeline)
    , m_rangeTimeline(widgets.rangeTimeline)
    , m_upper(barelyLaidOut(new QVBoxLayout))
    , m_lower(barelyLaidOut(new QVBoxLayout))
{
    QVBoxLayout* column = barelyLaidOut(new QVBoxLayout(window));
    column->addLayout(m_upper);
    column->addWidget(widgets.viewer, 1);
    column->addLayout(m_lower);
    column->addLayout(controlsRow(widgets));
}

void PlayerLayout::setTimelineAtTop(bool top)
{
    if (top) {
        m_upper->insertWidget(0, m_timeline);
    } else {
        m_lower->addWidget(m_timeline);
    }
}

void PlayerLayout::setRangeTimelineAtTop(bool top)
{
    if (top) {
        m_upper->addWidget(m_rangeTimeline);
    } else {
        m_lower->insertWidget(0, m_rangeTimeline);
    }
}
