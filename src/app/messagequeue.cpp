#include "messagequeue.h"

#include "launchrequest.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr int mostCharacters = 127; // of a signed byte
const QLatin1String separator("-_???_-");

} // namespace

QString MessageQueue::textOf(const QStringList& words)
{
    const QString text = words.join(separator);
    return text.isEmpty() ? LaunchRequest::nothing : text;
}

QStringList MessageQueue::wordsOf(const QString& text)
{
    return text.split(separator, Qt::SkipEmptyParts, Qt::CaseSensitive);
}

bool MessageQueue::carries(const QStringList& words)
{
    const QString text = textOf(words);
    const auto isAscii = [](QChar c) { return c.unicode() > 0 && c.unicode() < 128; };
    return text.size() <= mostCharacters && std::all_of(text.begin(), text.end(), isAscii)
        && (text == LaunchRequest::nothing || wordsOf(text) == words);
}

size_t MessageQueue::next(size_t cursor) const
{
    if (cursor >= m_block.size()) {
        return cursor;
    }
    const auto length = static_cast<signed char>(m_block[cursor]);
    return length > 0 ? cursor + static_cast<size_t>(length) + 1 : cursor;
}

void MessageQueue::append(const QString& text)
{
    const QByteArray record =
        QByteArray(1, static_cast<char>(text.size())) + text.toUtf8() + QByteArray(1, '\0');
    size_t end = 0;
    for (size_t after = next(end); after != end; after = next(end)) {
        end = after;
    }
    if (end < m_block.size()) {
        const size_t count = std::min(m_block.size() - end, static_cast<size_t>(record.size()));
        std::memcpy(m_block.data() + end, record.constData(), count);
    }
}

QString MessageQueue::takeLast()
{
    size_t last = 0;
    size_t end = 0;
    for (size_t after = next(end); after != end; after = next(end)) {
        last = end;
        end = after;
    }
    const auto record = m_block.subspan(last, std::min(end, m_block.size()) - last);
    const auto text = record.empty() ? record : record.subspan(1);
    const auto length = std::find(text.begin(), text.end(), '\0') - text.begin();
    QString message = QString::fromUtf8(text.data(), static_cast<int>(length));
    clear();
    return message;
}

void MessageQueue::clear()
{
    if (!m_block.empty()) {
        m_block[0] = 0;
    }
}
