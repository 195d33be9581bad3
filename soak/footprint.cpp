#include "footprint.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QStringList>

#include <algorithm>

namespace {

constexpr int memoryPlay = 12; // megabytes
constexpr int kilobytesPerMegabyte = 1024;

QString textOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

int numberAfter(const QString& name, const QString& text)
{
    const QRegularExpression line('^' + name + R"(:\s*(\d+))", QRegularExpression::MultilineOption);
    return line.match(text).captured(1).toInt();
}

// The toolkit's own for scaling pictures, each with a file to wake it by. They come with need and
// go half a minute after.
int pooledThreads(const QString& folder)
{
    int count = 0;
    const QDir tasks(folder + "task");
    for (const QString& task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        count += textOf(tasks.filePath(task + "/comm")).startsWith("Thread (pooled") ? 1 : 0;
    }
    return count;
}

// Without the caches of icons and file types that the toolkit opens once, with need, and keeps.
int openFiles(const QString& folder)
{
    int count = 0;
    const QDir descriptors(folder + "fd");
    for (const QFileInfo& each : descriptors.entryInfoList(QDir::System | QDir::Files)) {
        count += each.symLinkTarget().startsWith("/usr/share/") ? 0 : 1;
    }
    return count;
}

int median(QVector<int> values)
{
    std::sort(values.begin(), values.end());
    return values.value(values.size() / 2);
}

QString growthOf(const char* name, int Footprint::*figure, const QVector<Footprint>& all, int play)
{
    QVector<int> values;
    std::transform(all.begin(), all.end(), std::back_inserter(values),
        [figure](const Footprint& each) { return each.*figure; });
    const int before = median(values.mid(0, values.size() / 2));
    const int after = median(values.mid(values.size() / 2));
    return after <= before + play ? QString()
                                  : QString("%1 from %2 to %3; ").arg(name).arg(before).arg(after);
}

} // namespace

Footprint Footprint::of(qint64 processId)
{
    const QString folder = QString("/proc/%1/").arg(processId);
    const QString status = textOf(folder + "status");
    Footprint footprint;
    footprint.memory = numberAfter("VmRSS", status) / kilobytesPerMegabyte;
    const int pooled = pooledThreads(folder);
    footprint.threads = numberAfter("Threads", status) - pooled;
    footprint.files = openFiles(folder) - pooled;
    footprint.segments = textOf("/proc/sysvipc/shm").count('\n') - 1; // without the heading
    return footprint;
}

QString Footprint::text() const
{
    return QString("%1 MB, %2 files, %3 threads, %4 segments")
        .arg(memory)
        .arg(files)
        .arg(threads)
        .arg(segments);
}

QString growth(const QVector<Footprint>& footprints)
{
    return growthOf("memory in MB", &Footprint::memory, footprints, memoryPlay)
        + growthOf("open files", &Footprint::files, footprints, 0)
        + growthOf("threads", &Footprint::threads, footprints, 0)
        + growthOf("segments", &Footprint::segments, footprints, 0);
}
