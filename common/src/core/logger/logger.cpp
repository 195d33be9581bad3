#include "logger.h"

#include <QDebug>
#include <QString>

// The local 8-bit text is streamed as a C string, so that the debug stream adds no quotation marks.

void Logger::displayInfo(const QString& text)
{
    QMessageLogger(__FILE__, __LINE__, Q_FUNC_INFO).debug() << text.toLocal8Bit().constData();
}

void Logger::displayWarning(const QString& text)
{
    QMessageLogger(__FILE__, __LINE__, Q_FUNC_INFO).debug()
        << "[WARNING]" << text.toLocal8Bit().constData();
}

void Logger::displayError(const QString& text)
{
    QMessageLogger(__FILE__, __LINE__, Q_FUNC_INFO).debug()
        << "[ERROR]" << text.toLocal8Bit().constData();
}
