#include "rig.h"

#include "framecode.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QImage>

namespace {
constexpr double frameGuardSeconds = 0.0001; // puts a frame's time past its start
constexpr qint64 patienceMs = 20000;
constexpr qint64 settledMs = 300;
constexpr int heartbeatMs = 100;
constexpr QSize viewSize(1280, 720);
}

Rig::Rig()
{
    m_viewer.resize(viewSize);
    m_viewer.show();
    m_manager.setViewer(&m_viewer);
    m_heartbeat.start(heartbeatMs);
    QCoreApplication::processEvents();
}

bool Rig::open(const std::string& path)
{
    return m_manager.setMedia(QString::fromStdString(path), cacheBytes, trailingShare);
}

void Rig::seek(int frame, bool clearCache)
{
    m_viewer.setPixmap(QPixmap());
    m_manager.seek(clearCache, (frame - 1) * m_manager.frameDuration() + frameGuardSeconds, 0.0);
}

bool Rig::holds(int frame) const
{
    return holdsPicture() && framecode::read(m_viewer.pixmap().toImage()) == frame;
}

bool Rig::awaitPicture()
{
    return waitUntil([this] { return holdsPicture(); });
}

bool Rig::awaitReady()
{
    return waitUntil([this] { return m_manager.status() == PlaybackManager::Ready; });
}

void Rig::awaitFullCache()
{
    int frames = -1;
    QElapsedTimer unchanged;
    unchanged.start();
    waitUntil([&] {
        if (cachedFrames() != frames) {
            frames = cachedFrames();
            unchanged.restart();
        }
        return unchanged.elapsed() > settledMs;
    });
}

int Rig::lastFrame() const
{
    return static_cast<int>(m_manager.duration() * m_manager.frameRate() + 1.0);
}

bool Rig::waitUntil(const std::function<bool()>& condition)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > patienceMs) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}
