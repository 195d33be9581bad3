#include "commandline.h"

#include "settingsstore.h"

#include <QRegularExpression>
#include <QStringList>

#include <cmath>
#include <optional>

namespace {

using Kind = RemoteCommand::Kind;

constexpr float intLimit = 2147483648.0F; // the first float above every int
constexpr char tlsHandshake = 0x16; // the first byte of every TLS connection

QStringList tokens(const QString& line)
{
    static const QRegularExpression quote(QStringLiteral("['\"]"));
    QStringList result;
    bool quoted = line.startsWith(QLatin1Char('"'));
    const QStringList parts = line.split(quote, Qt::SkipEmptyParts);
    for (const QString& part : parts) {
        result += quoted ? QStringList(part) : part.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        quoted = !quoted;
    }
    return result;
}

// A fraction is cut off.
std::optional<int> number(const QString& word)
{
    bool parsed = false;
    const float value = word.toFloat(&parsed);
    if (!parsed || !std::isfinite(value) || value < -intLimit || value >= intLimit) {
        return std::nullopt;
    }
    return static_cast<int>(value);
}

std::optional<int> wholeNumber(const QString& word)
{
    bool parsed = false;
    const int value = word.toInt(&parsed);
    return parsed ? std::optional(value) : std::nullopt;
}

RemoteCommand frameCommand(Kind kind, std::optional<int> frame)
{
    return frame ? RemoteCommand{ kind, {}, *frame, -1 } : RemoteCommand{};
}

RemoteCommand fileCommand(const QStringList& words)
{
    const bool bookmarks = words[1].endsWith(QLatin1Char('.') + QLatin1String(bookmarksExtension));
    return { bookmarks ? Kind::OpenBookmarks : Kind::OpenMedia, words[1],
        number(words.value(2)).value_or(-1), number(words.value(3)).value_or(-1) };
}

} // namespace

RemoteCommand parseCommandLine(const QByteArray& line)
{
    const QStringList words = tokens(QString::fromUtf8(line.constData()).trimmed());
    const QString word = words.value(0);
    if (word == QLatin1String("exit")) {
        return { Kind::Exit, {}, -1, -1 };
    }
    if (words.size() < 2) {
        return {};
    }
    if (word == QLatin1String("file")) {
        return fileCommand(words);
    }
    if (word == QLatin1String("frame")) {
        return frameCommand(Kind::Frame, number(words[1]));
    }
    if (word == QLatin1String("frameRelative")) {
        return frameCommand(Kind::FrameRelative, number(words[1]));
    }
    if (word == QLatin1String("rstart")) {
        return frameCommand(Kind::RangeStart, wholeNumber(words[1]));
    }
    return word == QLatin1String("rend") ? frameCommand(Kind::RangeEnd, wholeNumber(words[1]))
                                         : RemoteCommand{};
}

bool isBrowserRequest(const QByteArray& line, bool whole)
{
    // Pages can choose the method, even one that is a command's word; so the target or the version
    // tells, too.
    static const QRegularExpression method(
        QStringLiteral("^(CONNECT|DELETE|GET|HEAD|OPTIONS|PATCH|POST|PUT|TRACE)\\b"));
    static const QRegularExpression version(QStringLiteral(" HTTP/[0-9.]+\\s*$"));
    static const QRegularExpression target(QStringLiteral("^\\S+ (/|\\*|\\w+:)"));
    const QString text = QString::fromLatin1(line);
    return line.startsWith(tlsHandshake) || text.contains(method)
        || text.contains(whole ? version : target);
}
