#pragma once

#include <QSyntaxHighlighter>

/// Colours the word in front of a message that tells how bad it is.
class ConsoleHighlighter : public QSyntaxHighlighter {
    Q_OBJECT

public:
    using QSyntaxHighlighter::QSyntaxHighlighter;

protected:
    void highlightBlock(const QString& text) override;
};
