#include "bookmarkcommands.h"

#include "bookmarks.h"
#include "transport.h"

BookmarkCommands::BookmarkCommands(Bookmarks& bookmarks, Transport& transport, QObject* parent)
    : QObject(parent)
    , m_bookmarks(bookmarks)
    , m_transport(transport)
{
}

void BookmarkCommands::addFrame(int frame)
{
    m_bookmarks.addFrame(frame);
    Q_EMIT changed();
}

void BookmarkCommands::addRange(int start, int end)
{
    // The name goes into the bookmarks file, which reads the same in every language.
    m_bookmarks.addRange(
        start, end, QString::number(start) + QLatin1String(" - ") + QString::number(end));
    m_bookmarks.setCurrentRange(start, end);
    Q_EMIT changed();
    Q_EMIT rangesChanged();
}

void BookmarkCommands::removeCurrentFrame()
{
    m_bookmarks.removeFrame(m_transport.currentFrame());
    Q_EMIT changed();
}

void BookmarkCommands::removeFramesInRange()
{
    m_bookmarks.removeFrames(m_transport.range().start, m_transport.range().end);
    Q_EMIT changed();
}

void BookmarkCommands::clearFrames()
{
    m_bookmarks.clearFrames();
    Q_EMIT changed();
}

void BookmarkCommands::removeCurrentRange()
{
    m_bookmarks.removeRange(m_transport.range().start, m_transport.range().end);
    Q_EMIT changed();
    Q_EMIT rangesChanged();
}

// The menu keeps its entries: one that is gone does nothing when chosen.
void BookmarkCommands::clearRanges()
{
    m_bookmarks.clearRanges();
    Q_EMIT changed();
}

void BookmarkCommands::cycleFrames(bool backward)
{
    if (const auto frame = m_bookmarks.cycledFrame(m_transport.currentFrame(), backward)) {
        m_transport.goTo(*frame);
    }
}

void BookmarkCommands::cycleRanges(bool backward)
{
    const FrameRange range = m_transport.range();
    if (const auto next = m_bookmarks.cycledRange(range.start, range.end, backward)) {
        m_transport.setRangeBookmark(next->start, next->end);
    }
}
