#include "clips.h"

#include <QDir>
#include <QFile>
#include <QStringList>

namespace {

double numberOf(const QString& fraction)
{
    const QStringList parts = fraction.split('/');
    return parts[0].toDouble() / parts.value(1, "1").toDouble();
}

Clip clipOf(const QStringList& columns)
{
    const QStringList size = columns[1].split('x');
    Clip clip{};
    clip.name = columns[0].trimmed();
    clip.path = QDir(QStringLiteral(CLIPS_FOLDER)).filePath(clip.name);
    clip.rate = numberOf(columns[2]);
    clip.frameCount = columns[3].toInt();
    clip.hasVideo = clip.frameCount > 0;
    clip.width = clip.hasVideo ? size[0].toInt() : 0;
    clip.height = clip.hasVideo ? size[1].toInt() : 0;
    clip.seconds = clip.hasVideo ? clip.frameCount / clip.rate : size[0].toDouble();
    return clip;
}

QVector<Clip> readTable()
{
    QFile table(QStringLiteral(CLIPS_TABLE));
    if (!table.open(QIODevice::ReadOnly | QIODevice::Text)) {
        qFatal("cannot read %s", CLIPS_TABLE);
    }
    QVector<Clip> clips;
    for (const QString& line : QString::fromUtf8(table.readAll()).split('\n')) {
        const QStringList columns = line.split('|');
        if (!line.startsWith('#') && columns.size() == 6) {
            clips.append(clipOf(columns));
        }
    }
    return clips;
}

} // namespace

const QVector<Clip>& allClips()
{
    static const QVector<Clip> clips = readTable();
    return clips;
}

const Clip& clip(const QString& name)
{
    for (const Clip& candidate : allClips()) {
        if (candidate.name == name) {
            return candidate;
        }
    }
    qFatal("no clip of the name %s", qPrintable(name));
}

QString sampleClipPath()
{
    return QStringLiteral(SAMPLE_CLIP);
}
