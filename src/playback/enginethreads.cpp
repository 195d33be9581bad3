#include "enginethreads.h"

#include "audiomanager.h"
#include "mediamanager.h"
#include "mediasource.h"
#include "videomanager.h"

#include <QThread>

#include <sys/prctl.h>
#include <vector>

namespace {

constexpr int mostWaitRounds = 100;
constexpr unsigned long waitRoundMicroseconds = 1000;
constexpr unsigned long timerSlackNanoseconds = 500000;

// Made once and never destroyed, so that what a thread may still use outlives every other static
// object.
template <typename T> void keepForever(std::unique_ptr<T> object)
{
    static auto* const kept = new std::vector<std::unique_ptr<T>>;
    kept->push_back(std::move(object));
}

// Three threads that look for work every millisecond, and those of the sound library, which inherit
// this: the system may wake them together. Waking is most of what the idle player costs.
void allowTimerSlack()
{
    (void)prctl(PR_SET_TIMERSLACK, timerSlackNanoseconds);
}

} // namespace

struct EngineThreads::Objects {
    // The managers are destroyed before the threads they live in.
    QThread mediaThread;
    QThread audioThread;
    QThread videoThread;
    MediaManager media;
    AudioManager audio;
    VideoManager video;

    [[nodiscard]] bool isRunning() const
    {
        return mediaThread.isRunning() || audioThread.isRunning() || videoThread.isRunning();
    }
};

EngineThreads::EngineThreads()
    : m_objects(std::make_unique<Objects>())
{
    m_objects->mediaThread.setObjectName(QStringLiteral("media"));
    m_objects->audioThread.setObjectName(QStringLiteral("audio"));
    m_objects->videoThread.setObjectName(QStringLiteral("video"));
    for (QThread* const thread :
        { &m_objects->mediaThread, &m_objects->audioThread, &m_objects->videoThread }) {
        QObject::connect(thread, &QThread::started, thread, allowTimerSlack, Qt::DirectConnection);
    }
}

EngineThreads::~EngineThreads()
{
    m_objects->mediaThread.quit();
    m_objects->audioThread.quit();
    m_objects->videoThread.quit();
    for (int round = 0; round < mostWaitRounds && m_objects->isRunning(); ++round) {
        QThread::usleep(waitRoundMicroseconds);
    }
    if (m_objects->isRunning()) {
        keepForever(std::move(m_objects));
    }
}

void EngineThreads::startMedia()
{
    m_objects->media.moveToThread(&m_objects->mediaThread);
    m_objects->mediaThread.start();
}

void EngineThreads::startAudio()
{
    m_objects->audio.moveToThread(&m_objects->audioThread);
    m_objects->audioThread.start();
}

void EngineThreads::startVideo()
{
    m_objects->video.moveToThread(&m_objects->videoThread);
    m_objects->videoThread.start();
}

MediaManager& EngineThreads::media()
{
    return m_objects->media;
}

AudioManager& EngineThreads::audio()
{
    return m_objects->audio;
}

VideoManager& EngineThreads::video()
{
    return m_objects->video;
}

void EngineThreads::leaveBehind(std::unique_ptr<MediaSource> source)
{
    source->abortRequested = true;
    source->audioPackets.clear();
    source->videoPackets.clear();
    source->audioFrames.clear();
    source->videoFrames.clear();
    keepForever(std::move(source));
}
