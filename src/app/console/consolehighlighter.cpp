#include "consolehighlighter.h"

#include <QColor>
#include <QRegularExpression>

void ConsoleHighlighter::highlightBlock(const QString& text)
{
    struct Prefix {
        QRegularExpression pattern;
        QColor colour;
    };
    static const Prefix prefixes[] = {
        { QRegularExpression(QStringLiteral("^ERROR: ")), Qt::red },
        { QRegularExpression(QStringLiteral("^WARNING: ")), Qt::yellow },
        { QRegularExpression(QStringLiteral("^INFO: ")), Qt::cyan },
    };
    for (const Prefix& prefix : prefixes) {
        const QRegularExpressionMatch match = prefix.pattern.match(text);
        if (match.hasMatch()) {
            setFormat(match.capturedStart(), match.capturedLength(), prefix.colour);
        }
    }
}
