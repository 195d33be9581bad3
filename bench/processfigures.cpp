#include "processfigures.h"

#include <QFile>

#include <unistd.h>

namespace {

QList<QByteArray> words(qint64 pid, const char* file)
{
    QFile source(QStringLiteral("/proc/%1/%2").arg(pid).arg(QLatin1String(file)));
    return source.open(QIODevice::ReadOnly) ? source.readAll().split(' ') : QList<QByteArray>();
}

} // namespace

double processfigures::residentBytes(qint64 pid)
{
    return words(pid, "statm").value(1).toDouble() * static_cast<double>(sysconf(_SC_PAGESIZE));
}

double processfigures::processorSeconds(qint64 pid)
{
    const QList<QByteArray> fields = words(pid, "stat"); // the program's name has no spaces
    return (fields.value(13).toDouble() + fields.value(14).toDouble())
        / static_cast<double>(sysconf(_SC_CLK_TCK));
}
