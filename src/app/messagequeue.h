#pragma once

#include <QString>
#include <QStringList>

#include <span>

/// The messages in the block that later launches share with the running player. A record is one
/// byte n, the number of characters of its text, and n bytes of text in UTF-8; a byte 0 ends the
/// queue. Characters are counted, yet bytes are stored: only ASCII texts of at most 127 characters
/// come through whole. The length byte is signed, and one below 0 ends the queue, too.
///
/// Any process of the user can write anything into the block, so nothing in it is trusted: no
/// function leaves the block, and each one ends. Whoever calls them holds the block's lock.
class MessageQueue {
public:
    explicit MessageQueue(std::span<char> block)
        : m_block(block)
    {
    }

    /// The words of a command line, without the program, as the text of one message; never empty.
    static QString textOf(const QStringList& words);
    /// The words of such a text. Empty words are lost.
    static QStringList wordsOf(const QString& text);
    /// Whether these very words come out at the other end of the queue.
    static bool carries(const QStringList& words);

    /// Behind what is queued already; cut at the end of the block.
    void append(const QString& text);
    /// The last message, empty if there is none; the queue is empty afterwards.
    QString takeLast();
    void clear();

private:
    /// Where the record after the one at `cursor` starts; `cursor` itself at the queue's end.
    [[nodiscard]] size_t next(size_t cursor) const;

    std::span<char> m_block;
};
