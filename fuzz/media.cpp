// A media file, from opening it to letting go of it: all the threads, the cache, the sound and the
// view, but no window. The last bytes of the file say what is done with it, so that every media
// file is an input as it is.
#include "check.h"
#include "mediasource.h"
#include "playbackmanager.h"
#include "scopedlock.h"
#include "softwareviewer.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/log.h>
}

#include <array>
#include <cmath>
#include <numeric>
#include <span>

namespace {

constexpr int endlessMs = 15000; // what takes so long does not end; a busy machine is slow
constexpr int fewestRounds = 2000; // of waiting in that time
constexpr int enoughMs = 1000; // nothing more is done with a file that takes so long
constexpr size_t planBytes = 16; // two a step
constexpr qint64 mostPixels = 2'000'000; // larger pictures cost time and show nothing new
constexpr int64_t cacheBytes = 256'000'000;
constexpr float trailingShare = 0.8F;
constexpr double sliceSeconds = 0.04;
constexpr int lastByteAtTheEnd = 240; // the bytes above it ask for times behind the end

constexpr std::array suffixes{ "avi", "flv", "m4v", "mkv", "mov", "mp4", "mpeg", "mpeg4", "mpg",
    "webm", "wmv" };

// Where the input has led in the libraries, which carry no counters of their own: by this the
// fuzzer knows an input that shows something new.
__attribute__((section("__libfuzzer_extra_counters"))) std::array<uint8_t, 4096> reached;

void note(unsigned kind, unsigned value)
{
    reached[(kind * 509 + value) % reached.size()] = 1;
}

template <typename Holds> void await(Holds holds, const char* promise)
{
    const QDeadlineTimer limit(endlessMs);
    // The rounds are counted, too: a machine that stood still has waited for nothing.
    for (int round = 0; !holds(); ++round) {
        check(!limit.hasExpired() || round < fewestRounds, promise);
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        QThread::usleep(200);
    }
}

class Visit {
public:
    explicit Visit(const QString& path);
    void carryOut(std::span<const uint8_t> plan);
    void leave();

private:
    void step(unsigned what, unsigned where);
    void seek(bool clearCache, double time);
    void settle();
    void look();
    void noteFile() const;
    [[nodiscard]] bool isOpen() const
    {
        return m_source && m_manager.status() != PlaybackManager::InvalidMedia;
    }

    SoftwareViewer m_viewer;
    PlaybackManager m_manager;
    MediaSource* m_source = nullptr; // the manager's, while it is loaded
    QElapsedTimer m_time;
};

Visit::Visit(const QString& path)
{
    m_time.start();
    m_manager.setViewer(&m_viewer);
    const auto forget = [this](PlaybackManager::Status status) {
        if (status == PlaybackManager::Unloading) {
            m_source = nullptr;
        }
    };
    QObject::connect(&m_manager, &PlaybackManager::statusChanged, forget);
    QObject::connect(&m_manager, &PlaybackManager::error,
        [](PlaybackManager::Error, const QString& text) { note(1, qHash(text)); });
    QObject::connect(&m_manager, &PlaybackManager::mediaSourceLoaded, [this](MediaSource* source) {
        m_source = source;
        noteFile();
        if (static_cast<qint64>(source->width) * source->height > mostPixels) {
            m_manager.stop();
        }
    });
    check(m_manager.setMedia(path, cacheBytes, trailingShare), "the name is accepted");
    settle();
}

void Visit::noteFile() const
{
    note(2, qHash(QByteArray(m_source->formatContext->iformat->name)));
    note(3, m_source->formatContext->nb_streams);
    if (m_source->videoCodec) {
        note(4, m_source->videoCodec->codec_id);
        note(5, m_source->videoCodec->pix_fmt);
        note(6, m_source->turn.quarters);
    }
    if (m_source->audioCodec) {
        note(7, m_source->audioCodec->codec_id);
        note(8, m_source->audioCodec->sample_fmt);
        note(9, m_source->channels);
    }
}

void Visit::settle()
{
    const auto isSettled = [this] {
        const auto status = m_manager.status();
        return status == PlaybackManager::NoMedia || status == PlaybackManager::Ready
            || status == PlaybackManager::InvalidMedia;
    };
    await(isSettled, "opening and seeking end");
    if (m_manager.status() == PlaybackManager::Ready) {
        const double time = m_manager.playbackTime();
        check(std::isfinite(time) && time >= 0.0, "the play head has a time");
        check(std::isfinite(m_manager.duration()) && m_manager.duration() >= 0.0, "so has the end");
        check(std::isfinite(m_manager.frameRate()) && m_manager.frameRate() > 0.0, "rates work");
        look();
    }
}

// At the picture under the play head, every byte of it.
void Visit::look()
{
    const ScopedLock lock(m_source->videoFrames.mutex());
    const DecodedVideoFrame* frame = m_source->videoFrames.frameAt(m_source->clockTime(false));
    if (frame) {
        check(std::isfinite(frame->time), "a picture has a time");
        check(frame->width > 0 && frame->height > 0
                && static_cast<qint64>(frame->width) * 3 * frame->height <= frame->size,
            "a picture has all its bytes");
        const uint8_t* bytes = frame->data.get();
        note(10, std::accumulate(bytes, bytes + frame->size, 0U) != 0);
    }
    note(11, static_cast<unsigned>(m_source->videoFrames.frameCount()));
}

void Visit::carryOut(std::span<const uint8_t> plan)
{
    for (size_t i = 0; i + 1 < plan.size() && isOpen() && m_time.elapsed() < enoughMs; i += 2) {
        step(plan[i], plan[i + 1]);
        settle();
    }
}

void Visit::seek(bool clearCache, double time)
{
    m_manager.seek(clearCache, time, sliceSeconds);
}

void Visit::step(unsigned what, unsigned where)
{
    const double time = m_manager.duration() * where / lastByteAtTheEnd;
    switch (what % 7) {
    case 0:
        return seek(false, time);
    case 1:
        return seek(true, time);
    case 6: // steps back that one decode is to serve
        seek(true, time);
        for (unsigned i = 1; i <= where % 8; ++i) {
            m_manager.seek(false, time - i * m_manager.frameDuration(), sliceSeconds,
                PlaybackManager::Reach::Backward);
        }
        return;
    case 2: // one on the heels of the other
        seek(true, time);
        return seek(true, m_manager.duration() - time);
    case 3:
        m_manager.setSpeedMultiplier(where % 2 == 0 ? 1.0 : 4.0);
        m_manager.play();
        QThread::msleep(where % 16);
        QCoreApplication::processEvents();
        return m_manager.pause();
    case 4:
        m_manager.setRotation(static_cast<int>(where) * 15 % 360);
        return m_manager.setFlip(where % 2 == 0, where % 3 == 0);
    default:
        return m_manager.setCacheSize(
            cacheBytes * (1 + where % 2), static_cast<float>(where) / 255.0F);
    }
}

void Visit::leave()
{
    m_manager.stop();
    await([this] { return m_manager.status() == PlaybackManager::NoMedia; },
        "a file can be let go of");
}

} // namespace

// Leaks that are not the player's. The font library holds what it has read of the fonts by offsets,
// which the leak checker does not take for pointers. The toolkit never deletes the screen that it
// makes where there is no display.
extern "C" const char* __lsan_default_suppressions() // NOLINT(bugprone-reserved-identifier)
{
    return "leak:libfontconfig.so\nleak:QScreen::QScreen\n";
}

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    av_log_set_level(AV_LOG_QUIET);
    static const QApplication application(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < planBytes) {
        return 0;
    }
    const std::span<const uint8_t> plan(data + size - planBytes, planBytes);
    static const QTemporaryDir folder;
    const QString path =
        folder.filePath(QStringLiteral("input.") + suffixes.at(plan.back() % suffixes.size()));
    QFile file(path);
    check(file.open(QIODevice::WriteOnly)
            && file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size))
                == static_cast<qint64>(size),
        "the input can be laid down");
    file.close();
    {
        Visit visit(path);
        visit.carryOut(plan);
        visit.leave();
    }
    QFile::remove(path);
    return 0;
}
