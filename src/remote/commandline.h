#pragma once

#include <QByteArray>
#include <QString>

/// What one line asks the player to do.
struct RemoteCommand {
    enum class Kind {
        None, // an empty line, an unknown word, too few words or no number where one is needed
        Exit,
        OpenMedia,
        OpenBookmarks,
        Frame,
        FrameRelative,
        RangeStart,
        RangeEnd
    };

    Kind kind = Kind::None;
    QString file; // to open
    int first = -1; // the frame, or the range's start with a file; -1: not given or no number
    int last = -1; // the range's end with a file

    bool operator==(const RemoteCommand&) const = default;
};

/// Reads a line of UTF-8, up to a null byte if there is one, with or without its end.
///
/// Words are separated by spaces, and double or single quotes hold one together. The quotes are
/// not matched by kind: every second stretch between any two counts as quoted. A line that begins
/// with a double quote begins quoted, one that begins with a single quote does not.
RemoteCommand parseCommandLine(const QByteArray& line);

/// True where `line`, the first of its connection, is a browser's: a web page can have one send any
/// text to this machine, after a request line or a TLS handshake. Not `whole`: only the line's
/// beginning is known.
bool isBrowserRequest(const QByteArray& line, bool whole);
