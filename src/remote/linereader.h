#pragma once

#include <QByteArray>

#include <optional>

class QIODevice;

/// Takes the lines of one connection from its device as they become complete. A line that is too
/// long is never held whole: it is dropped piece by piece as it comes in.
///
/// The device is read until it is empty before the reader gives up. A socket with a full buffer
/// stops listening and starts again only then, so a half line must not stay behind in it.
class LineReader {
public:
    static constexpr int maxLine = 65536; // bytes, without the line end

    struct Line {
        QByteArray bytes;
        bool whole = true; // false: too long; only the beginning is there, the rest is dropped
    };

    /// Nothing while no line is complete.
    std::optional<Line> next(QIODevice& device);
    /// Bytes taken from the device of lines not handed out yet.
    [[nodiscard]] int pendingBytes() const { return m_pending.size() - m_start; }

private:
    QByteArray m_pending; // from m_start on
    int m_start = 0;
    bool m_dropping = false; // what comes belongs to a line that is too long
};
