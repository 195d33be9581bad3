#include "launchrequest.h"

#include <QFileInfo>

namespace {

int frameFrom(const QString& word)
{
    bool isNumber = false;
    const int frame = word.toInt(&isNumber);
    return isNumber ? frame : -1;
}

} // namespace

const QString LaunchRequest::nothing = QStringLiteral("noargs");

LaunchRequest LaunchRequest::fromCommandLine(const QStringList& commandLine)
{
    const QStringList words = commandLine.mid(1);
    LaunchRequest request{ words.value(0), frameFrom(words.value(1)), frameFrom(words.value(2)) };
    if (!request.file.isEmpty() && !QFileInfo::exists(request.file)) {
        request.file = words.join(QLatin1Char(' '));
    }
    return request;
}

LaunchRequest LaunchRequest::fromMessage(const QStringList& words)
{
    const QString file = words.value(0);
    return { file == nothing ? QString() : file, frameFrom(words.value(1)),
        frameFrom(words.value(2)) };
}

QStringList LaunchRequest::commandLineToSend(const QStringList& commandLine)
{
    const LaunchRequest request = fromCommandLine(commandLine);
    if (!QFileInfo::exists(request.file)) {
        return commandLine;
    }
    const QString absolute = QFileInfo(request.file).absoluteFilePath();
    if (request.file != commandLine.value(1)) { // joined from pieces
        return { commandLine.value(0), absolute, QString::number(request.rangeStart),
            QString::number(request.rangeEnd) };
    }
    QStringList sent = commandLine;
    sent[1] = absolute;
    return sent;
}
