#include "linereader.h"

#include <QIODevice>

#include <utility>

std::optional<LineReader::Line> LineReader::next(QIODevice& device)
{
    for (;;) {
        const int end = m_pending.indexOf('\n', m_start);
        if (end >= 0) {
            const int start = std::exchange(m_start, end + 1);
            if (std::exchange(m_dropping, false)) {
                continue;
            }
            return Line{ m_pending.mid(start, end - start), true };
        }
        m_pending.remove(0, m_dropping ? m_pending.size() : m_start);
        m_start = 0;
        if (m_pending.size() > maxLine) {
            m_dropping = true;
            return Line{ std::exchange(m_pending, {}), false };
        }
        const QByteArray more = device.read(maxLine + 1 - m_pending.size());
        if (more.isEmpty()) {
            return std::nullopt;
        }
        m_pending += more;
    }
}
