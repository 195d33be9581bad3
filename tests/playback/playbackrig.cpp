#include "playbackrig.h"

#include "clips.h"
#include "framecode.h"

#include <QDir>
#include <QImage>
#include <QProcess>
#include <QTest>

namespace {

constexpr int patienceMs = 10000;
constexpr int64_t cacheBytes = 256000000;
constexpr float trailingShare = 0.8F;

QString pathOf(const QString& name)
{
    return QDir::isAbsolutePath(name) ? name : clip(name).path;
}

} // namespace

bool PlaybackRig::request(const QString& name)
{
    return manager.setMedia(pathOf(name), cacheBytes, trailingShare);
}

bool PlaybackRig::open(const QString& name)
{
    const auto isOpen = [&] {
        return manager.mediaFilename() == pathOf(name)
            && manager.status() == PlaybackManager::Ready;
    };
    return request(name) && QTest::qWaitFor(isOpen, patienceMs);
}

void PlaybackRig::goTo(int frame, bool clearCache, PlaybackManager::Reach reach)
{
    manager.seek(clearCache, (frame - 1) * manager.frameDuration() + 0.0001, 0.0, reach);
}

int PlaybackRig::shown() const
{
    return framecode::read(viewer.pixmap().toImage());
}

int PlaybackRig::settledOn(int frame)
{
    const auto settled = [&] {
        return manager.status() == PlaybackManager::Ready && shown() == frame;
    };
    return QTest::qWaitFor(settled, patienceMs) ? frame : shown();
}

int PlaybackRig::visit(int frame, bool clearCache)
{
    goTo(frame, clearCache);
    return settledOn(frame);
}

bool PlaybackRig::waitFor(PlaybackManager::Status status)
{
    return QTest::qWaitFor([&] { return manager.status() == status; }, patienceMs);
}

bool PlaybackRig::waitForState(PlaybackManager::State state)
{
    return QTest::qWaitFor([&] { return manager.state() == state; }, patienceMs);
}

bool joinStreams(const QString& first, const QString& second, const QString& optionsAndPath)
{
    const QString command = "-v error -i %1 -i %2 -map 0 -map 1 -c copy " + optionsAndPath;
    return QProcess::execute("ffmpeg", command.arg(first, second).split(' ')) == 0;
}
