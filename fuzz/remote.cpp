// The lines of the remote control, as they come in over a connection: in pieces of any length.
#include "check.h"
#include "commandline.h"
#include "linereader.h"

#include <QIODevice>
#include <QList>

#include <algorithm>

namespace {

constexpr char stretchMark = 1; // stands for a stretch, so that short inputs make long lines
constexpr int stretchBytes = 16384;
constexpr int mostStretches = 12;
constexpr int mostPieces = 1024;

/// A connection that has only what came in by now.
class Connection : public QIODevice {
public:
    Connection() { open(ReadOnly | Unbuffered); }
    void receive(const QByteArray& bytes) { m_bytes += bytes; }
    [[nodiscard]] bool isSequential() const override { return true; }

protected:
    qint64 readData(char* data, qint64 most) override
    {
        const auto count = static_cast<int>(std::min<qint64>(most, m_bytes.size()));
        std::copy_n(m_bytes.constData(), count, data);
        m_bytes.remove(0, count);
        return count;
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    QByteArray m_bytes;
};

QByteArray stretched(const QByteArray& bytes)
{
    QByteArray result;
    int stretches = 0;
    for (const char byte : bytes) {
        const bool isMark = byte == stretchMark && ++stretches <= mostStretches;
        result += isMark ? QByteArray(stretchBytes, 'a') : QByteArray(1, byte);
    }
    return result;
}

QList<LineReader::Line> linesOf(const QByteArray& bytes)
{
    QList<LineReader::Line> lines;
    QList<QByteArray> pieces = bytes.split('\n');
    const QByteArray unfinished = pieces.takeLast();
    if (unfinished.size() > LineReader::maxLine) {
        pieces.append(unfinished);
    }
    for (const QByteArray& piece : pieces) {
        const bool whole = piece.size() <= LineReader::maxLine;
        lines.append({ whole ? piece : piece.left(LineReader::maxLine + 1), whole });
    }
    return lines;
}

void checkCommand(const QByteArray& line)
{
    using Kind = RemoteCommand::Kind;
    const RemoteCommand command = parseCommandLine(line);
    const bool opens = command.kind == Kind::OpenMedia || command.kind == Kind::OpenBookmarks;
    check(opens == !command.file.isEmpty(), "a file goes with a command that opens one");
    check(command.file.endsWith(".bmk") == (command.kind == Kind::OpenBookmarks),
        "the name tells bookmarks from media");
    check(command.kind != Kind::None || command == RemoteCommand{}, "no command, no values");
    check(parseCommandLine(line + "\r\n") == command, "the line's end changes nothing");
    if (opens && !command.file.contains('"') && !command.file.contains('\'')) {
        const QByteArray again = "file \"" + command.file.toUtf8() + "\" "
            + QByteArray::number(command.first) + ' ' + QByteArray::number(command.last);
        check(parseCommandLine(again) == command, "a quoted name is read as it stands");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1) {
        return 0;
    }
    const QByteArray bytes =
        stretched(QByteArray(reinterpret_cast<const char*>(data) + 1, static_cast<int>(size) - 1));
    // From a byte to a full line; a long input in not too many pieces.
    const int pieceBytes = std::max(data[0] * data[0] + 1, bytes.size() / mostPieces);
    const QList<LineReader::Line> expected = linesOf(bytes);
    Connection connection;
    LineReader reader;
    int count = 0;
    for (int at = 0; at < bytes.size(); at += pieceBytes) {
        connection.receive(bytes.mid(at, pieceBytes));
        while (const auto line = reader.next(connection)) {
            check(count < expected.size() && line->bytes == expected[count].bytes
                    && line->whole == expected[count].whole,
                "lines are the same however they come in");
            ++count;
            checkCommand(line->bytes);
            isBrowserRequest(line->bytes, line->whole);
        }
        check(reader.pendingBytes() <= LineReader::maxLine, "what waits is bounded");
    }
    check(count == expected.size(), "every line comes out");
    return 0;
}
