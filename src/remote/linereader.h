#pragma once

#include <QByteArray>

#include <optional>

class QIODevice;

/// Takes the lines of one connection from its device as they become complete. A line that is too
/// long is never held whole: it is dropped piece by piece as it comes in.
class LineReader {
public:
    static constexpr qint64 maxLine = 65536; // bytes, without the line end
    /// Bytes that the device has to be able to hold unread.
    static constexpr qint64 bufferSize = maxLine + 1;

    struct Line {
        QByteArray bytes;
        bool whole = true; // false: too long; only the beginning is there, the rest is dropped
    };

    /// Nothing while no line is complete.
    std::optional<Line> next(QIODevice& device);

private:
    bool m_dropping = false; // what comes belongs to a line that is too long
};
