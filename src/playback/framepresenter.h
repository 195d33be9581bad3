#pragma once

#include <QSize>

#include <optional>

class MediaSource;
class SoftwareViewer;
struct DecodedVideoFrame;
struct PictureTurn;

/// Takes the picture for the play head out of the cache, mirrors and turns it, first as the file
/// asks, then as the user does, and hands it to the viewer: once per picture, however often it is
/// asked. GUI thread.
class FramePresenter {
public:
    enum class Result {
        NoViewer,
        Shown, // the right picture is on show
        Missing, // nothing is cached
        Awaited // a picture that starts by this time is still to be decoded, or can be: ask again
    };

    void setViewer(SoftwareViewer* viewer) { m_viewer = viewer; }
    void setFlip(bool horizontal, bool vertical);
    /// Clockwise degrees; kept as the remainder of a division by 360 that keeps the sign.
    void setRotation(int degrees);

    /// Shows the picture for the source's clock. `refresh` paints it even where it is on show
    /// already. While playing, a late picture is better than none, but none that is over by the
    /// time `movingFrom`, in seconds, to which the play head was set.
    Result show(MediaSource& source, bool refresh, std::optional<double> movingFrom);

    /// Shows the picture that the source begins with, where it has come ahead of the decoder's.
    void showOpening(MediaSource& source);

    /// Shows nothing.
    void clear();
    /// The next picture is painted whatever its number.
    void forget();

    /// Size at 100 % of a picture that the source stores in that size: turned as a whole and with
    /// square pixels (see shapeOf). Of the user's turn the quarters count.
    [[nodiscard]] QSize shownSize(const MediaSource& source, const QSize& stored) const;

    [[nodiscard]] bool flipsHorizontally() const { return m_flipHorizontal; }
    [[nodiscard]] bool flipsVertically() const { return m_flipVertical; }
    [[nodiscard]] int rotation() const { return m_rotation; }
    [[nodiscard]] int lastDisplayedFrame() const { return m_lastDisplayedFrame; }

private:
    void paint(const MediaSource& source, const DecodedVideoFrame& frame);
    [[nodiscard]] PictureTurn turnFor(const MediaSource& source) const;

    SoftwareViewer* m_viewer = nullptr; // not owned
    int m_lastDisplayedFrame = -1; // number of the frame last given to the viewer
    double m_lastDisplayedTime = 0.0; // and its time, seconds
    bool m_repaintPending = true; // paint the next picture whatever its number
    bool m_flipHorizontal = false;
    bool m_flipVertical = false;
    int m_rotation = 0; // degrees
};
