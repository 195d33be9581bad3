#include "mousescrubber.h"

#include <utility>

namespace {
constexpr int normalPixels = 10;
constexpr int finePixels = 4;
constexpr int coarsePixels = 22;
}

int MouseScrubber::pixelsPerFrame(bool shift, bool control)
{
    if (shift == control) {
        return normalPixels;
    }
    return shift ? finePixels : coarsePixels;
}

void MouseScrubber::begin(int x)
{
    m_active = true;
    m_lastX = x;
    m_leftBehind = Edge::None;
}

void MouseScrubber::end()
{
    m_active = false;
}

MouseScrubber::Step MouseScrubber::move(int x, int pixelsPerFrame, bool endless, int desktopWidth)
{
    Step step;
    if (endless) {
        const int last = desktopWidth - 1;
        const Edge edge = x < 1 ? Edge::Left : x >= last ? Edge::Right : Edge::None;
        if (edge != Edge::None && edge == m_leftBehind) {
            return step;
        }
        m_leftBehind = edge;
        if (edge == Edge::Left) {
            x = desktopWidth - 2;
            m_lastX += x;
            step.warpTo = x;
        } else if (edge == Edge::Right) {
            m_lastX -= x + 1;
            x = 1;
            step.warpTo = x;
        }
    }
    step.frames = (x - m_lastX) / pixelsPerFrame;
    if (step.frames != 0) {
        m_lastX = x;
    }
    return step;
}
