#pragma once

#include <optional>

/// Turns a drag over the video into steps of frames. Positions are x on the desktop, in pixels.
class MouseScrubber {
public:
    /// Pixels to drag for a frame.
    static int pixelsPerFrame(bool shift, bool control);

    struct Step {
        int frames = 0;
        std::optional<int> warpTo; // x that the pointer is to be moved to
    };

    [[nodiscard]] bool isActive() const { return m_active; }
    void begin(int x);
    void end();

    /// A move of the pointer while active. What is left over below a frame's pixels is carried to
    /// the next move, what is left over beside whole frames is lost. Where the scrub has no end, a
    /// pointer at one edge of a desktop `desktopWidth` wide is to go on from the other.
    Step move(int x, int pixelsPerFrame, bool endless, int desktopWidth);
    /// The pointer is still at `x`, where the last move was: not every desktop lets it be moved.
    void stayedAt(int x) { m_lastX = x; }

private:
    enum class Edge { None, Left, Right };

    bool m_active = false;
    int m_lastX = 0;
    Edge m_leftBehind = Edge::None; // moves from there are older than the warp
};
