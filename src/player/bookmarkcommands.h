#pragma once

#include <QObject>

class Bookmarks;
class Transport;

/// Marks frames and ranges, and goes from mark to mark. "Current" is the frame under the play head
/// and the range that is played.
class BookmarkCommands : public QObject {
    Q_OBJECT

public:
    BookmarkCommands(Bookmarks& bookmarks, Transport& transport, QObject* parent = nullptr);

    void addFrame(int frame);
    /// Both ends included. The range counts as the one that is played.
    void addRange(int start, int end);
    void removeCurrentFrame();
    void removeFramesInRange();
    void clearFrames();
    void removeCurrentRange();
    void clearRanges();
    void cycleFrames(bool backward);
    void cycleRanges(bool backward);

Q_SIGNALS:
    void changed();
    /// What the menu of ranges offers is to be made anew.
    void rangesChanged();

private:
    Bookmarks& m_bookmarks;
    Transport& m_transport;
};
