#include "linereader.h"

#include <QIODevice>

std::optional<LineReader::Line> LineReader::next(QIODevice& device)
{
    while (m_dropping || device.canReadLine() || device.bytesAvailable() >= bufferSize) {
        const QByteArray part = device.readLine(bufferSize + 1); // counts a null byte at the end
        if (part.isEmpty()) {
            break;
        }
        const bool isRest = m_dropping;
        m_dropping = !part.endsWith('\n');
        if (!isRest) {
            return Line{ part, !m_dropping };
        }
    }
    return std::nullopt;
}
