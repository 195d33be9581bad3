#include "mediacopy.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <filesystem>

namespace {

constexpr qint64 chunkBytes = 1 << 20;
constexpr qint64 wholePercent = 100;

// Also by way of links.
bool isSameFile(const QString& one, const QString& other)
{
    std::error_code ignored; // what does not exist is no other file
    return std::filesystem::equivalent(
        QFile::encodeName(one).toStdString(), QFile::encodeName(other).toStdString(), ignored);
}

} // namespace

MediaCopy::MediaCopy(const QString& source, const QString& destination, QObject* parent)
    : QThread(parent)
    , m_source(source)
    , m_destination(destination)
{
}

MediaCopy::~MediaCopy()
{
    cancel();
    wait();
}

void MediaCopy::run()
{
    m_result = copy();
}

MediaCopy::Result MediaCopy::copy()
{
    const bool replaces = QFileInfo::exists(m_destination);
    const Result refused = replaces ? Result::OverwriteFailed : Result::CopyFailed;
    QFile source(m_source);
    QSaveFile destination(m_destination);
    if (isSameFile(m_source, m_destination)) {
        return Result::OverwriteFailed;
    }
    if (!source.open(QIODevice::ReadOnly)) {
        return Result::CopyFailed;
    }
    if (!destination.open(QIODevice::WriteOnly)) {
        return refused;
    }
    const qint64 size = qMax(source.size(), qint64{ 1 });
    qint64 copied = 0;
    while (!source.atEnd()) {
        const QByteArray chunk = source.read(chunkBytes);
        if (m_cancelled) {
            return Result::Cancelled;
        }
        if (chunk.isEmpty() || destination.write(chunk) != chunk.size()) {
            return Result::CopyFailed;
        }
        copied += chunk.size();
        Q_EMIT progressed(static_cast<int>(qMin(copied, size) * wholePercent / size));
    }
    destination.setPermissions(source.permissions());
    return destination.commit() ? Result::Done : refused;
}
