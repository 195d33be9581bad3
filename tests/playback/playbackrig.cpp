#include "playbackrig.h"

#include "framecode.h"

#include <QImage>
#include <QtTest>

namespace {
constexpr int patienceMs = 10000;
constexpr int64_t cacheBytes = 256000000;
constexpr float trailingShare = 0.8F;
}

PlaybackRig::PlaybackRig()
{
    manager.setViewer(&viewer);
}

bool PlaybackRig::open(const QString& path)
{
    return manager.setMedia(path, cacheBytes, trailingShare)
        && QTest::qWaitFor(
            [&] {
                return manager.mediaFilename() == path
                    && manager.status() == PlaybackManager::Ready;
            },
            patienceMs);
}

void PlaybackRig::goTo(int frame, bool clearCache)
{
    manager.seek(clearCache, timeOf(frame), 0.0);
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

bool PlaybackRig::waitFor(PlaybackManager::Status status)
{
    return QTest::qWaitFor([&] { return manager.status() == status; }, patienceMs);
}

bool PlaybackRig::waitForState(PlaybackManager::State state)
{
    return QTest::qWaitFor([&] { return manager.state() == state; }, patienceMs);
}

int PlaybackRig::lastFrame() const
{
    return static_cast<int>(manager.duration() * manager.frameRate() + 1.0);
}

double PlaybackRig::timeOf(int frame) const
{
    return (frame - 1) * manager.frameDuration() + 0.0001;
}
