#pragma once

#include "frametext.h"
#include "rangedrag.h"
#include "timelinecolours.h"
#include "timelinegeometry.h"
#include "timelinemenu.h"

#include <QWidget>

#include <optional>

class Bookmarks;
struct TimelineDisplay;

/// The bar that shows all frames of the media: the current one, the playback range with its two
/// handles, the bookmarks and what is cached. It changes neither the frame nor the range itself:
/// it asks by signals and shows what is set on it. Frames count from 1.
///
/// How frames are written and what is shown is a setting shared by all timelines of a kind.
class TimelineWidget : public QWidget {
    Q_OBJECT

public:
    explicit TimelineWidget(QWidget* parent = nullptr);

    void setCurrentFrame(int frame);
    void setFrameCount(int count);
    /// Both ends included.
    void setRange(int start, int end);
    /// Both ends included; -1, -1 for none.
    void setCachedRange(int start, int end);
    /// Frames per second by the media; 0 writes no frames.
    void setFrameRate(double rate);
    /// Frames per second as measured; 0 while not playing.
    void setPlaybackRate(double rate);
    /// Factor that playing is sped up by.
    void setSpeed(double speed);
    /// Null for none; otherwise they outlive the widget. Call update() after a change of them.
    void setBookmarks(const Bookmarks* bookmarks);

    [[nodiscard]] int currentFrame() const { return m_currentFrame; }
    [[nodiscard]] int rangeStart() const { return m_range.start; }
    [[nodiscard]] int rangeEnd() const { return m_range.end; }

    /// `frame` as this timeline writes it.
    [[nodiscard]] QString frameToString(int frame) const;

public Q_SLOTS:
    virtual void setDisplayType(DISPLAY_TYPE type);
    virtual void displayFrameBookmarks(bool display);
    virtual void displayRangeBookmarks(bool display);
    virtual void displayCache(bool display);
    /// The type that the sending context action stands for.
    void setDisplayType();
    /// Only asks for it.
    void setPositionAtTop(bool top);
    void setRangeStartFromAction();
    void setRangeEndFromAction();
    void resetRange();
    /// Returns when the menu is closed.
    void contextMenu(QPoint pos);

Q_SIGNALS:
    /// The user asks for `frame`, with a piece of sound while dragging.
    void frameChangeRequest(int frame, bool audioScrub);
    void rangeChangeRequest(int start, int end);
    /// The user asks for the timeline above the video, or below it.
    void positionChangeRequest(bool top);

protected:
    /// For another kind of timeline; `display` is what all of that kind share.
    TimelineWidget(const TimelineMetrics& metrics, TimelineDisplay& display,
        bool offersRangeBookmarks, QWidget* parent);

    virtual void drawBackground(QPainter* painter);
    virtual void drawPlaybackRange(QPainter* painter);
    virtual void drawCurrentFrame(QPainter* painter);
    virtual void drawHoverFrame(QPainter* painter);
    virtual void drawFrameBookmarks(QPainter* painter);
    virtual void drawRangeBookmarks(QPainter* painter);
    virtual void drawLength(QPainter* painter);
    virtual void drawRate(QPainter* painter);
    /// Frame under a place of the widget.
    [[nodiscard]] virtual int frameAtPosition(QPoint position) const;
    /// x of a frame; TimelineGeometry::noPosition where it has none.
    [[nodiscard]] virtual int positionOfFrame(int frame) const;
    virtual void updateContextActions(QPoint pos);

    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

    /// Where everything lies now.
    [[nodiscard]] TimelineGeometry parts() const { return TimelineGeometry(m_metrics, size()); }
    [[nodiscard]] const TimelineDisplay& display() const { return m_display; }
    [[nodiscard]] FrameRange range() const { return m_range; }
    [[nodiscard]] FrameRange cachedRange() const { return m_cached; }

    /// Where the pointer is, in whole pixels.
    [[nodiscard]] static QPoint placeOf(const QMouseEvent* event);
    void fill(QPainter* painter, const QRect& rect, const QColor& colour) const;
    /// Writes a side text into `box`, condensed where it takes more than `width` pixels.
    void drawSideText(QPainter* painter, const QRect& box, int width, int flags,
        const QString& text, const QColor& colour = timelinecolours::sideText) const;
    /// Line and dot for each bookmark from frame `first` to frame `last`.
    void drawBookmarksBetween(QPainter* painter, int first, int last) const;

private:
    enum class Hover { None, Range, Start, End };

    template <typename T> void store(T& field, const T& value);
    [[nodiscard]] bool isWholeRange() const;
    [[nodiscard]] bool isBookmarked(int frame) const;
    [[nodiscard]] PixelSpan rangeEnds() const;
    [[nodiscard]] Hover partAt(QPoint position) const;
    void drawHandles(QPainter* painter, PixelSpan ends) const;
    void drawFrame(
        QPainter* painter, int frame, int x, const QColor& marker, const QColor& label) const;
    void beginDrag(Hover part, QPoint position);
    void dragRange(QPoint position);

    TimelineDisplay& m_display; // of this kind of timeline, in the settings
    const TimelineMetrics& m_metrics; // static
    TimelineMenu m_menu;
    const Bookmarks* m_bookmarks = nullptr; // not owned
    int m_currentFrame = 1;
    int m_frameCount = 0;
    FrameRange m_range{ 1, 100 };
    FrameRange m_cached{ -1, -1 };
    double m_frameRate = 0.0;
    double m_playbackRate = 0.0;
    double m_speed = 1.0;
    DISPLAY_TYPE m_displayType = DISPLAY_TYPE::FrameNumbers;
    bool m_offersRangeBookmarks;

    // What the left button does since it went down.
    bool m_scrubbing = false;
    std::optional<RangeDrag> m_rangeDrag;
    Hover m_hover = Hover::None; // while no button is down
};
