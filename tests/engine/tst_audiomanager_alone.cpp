#include "audiomanager.h"
#include "clips.h"
#include "mediareader.h"
#include "mediasource.h"
#include "soundserver.h"

#include <QTest>
#include <QThread>

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <cmath>
#include <functional>
#include <numeric>
#include <thread>

namespace {

constexpr int limitMs = 20000;
constexpr double toneHertz = 220.0; // the sound of the clips,
constexpr double beepHertz = 880.0; // which beeps at every whole second
const QVector<int> streaming{ AudioManager::Decoding, AudioManager::Streaming };
using Change = std::function<void(MediaSource&)>;

/// A clip whose sound is read, decoded and played, each in its thread as in the player.
class Playing : public QObject {
public:
    explicit Playing(const Change& change = [](MediaSource&) {})
    {
        qRegisterMetaType<MediaSource*>("MediaSource*");
        connect(&manager, &AudioManager::error, this, [this](int error) { errors << error; });
        connect(&manager, &AudioManager::statusChanged, this, [this](int s) { statuses << s; });
        connect(&manager, &AudioManager::released, this, [this] { ++released; });
        if (MediaReader(&source).open() < 0) {
            qFatal("%s does not open", qPrintable(source.filename));
        }
        source.videoUnused = true;
        change(source);
        reading = std::thread([this] { (void)MediaReader(&source).readPackets(0); });
        manager.moveToThread(&thread);
        thread.start();
        start();
    }

    void start()
    {
        QMetaObject::invokeMethod(&manager, "changeMediaSource", Q_ARG(MediaSource*, &source));
    }

    bool stop()
    {
        source.abortRequested = true;
        QMetaObject::invokeMethod(&manager, "stopDecoding");
        return QTest::qWaitFor([this] { return released == 1; }, limitMs);
    }

    ~Playing() override
    {
        source.abortRequested = true;
        thread.quit();
        thread.wait();
        reading.join();
    }

    MediaSource source{ clip("soundonly.mp4").path };
    QVector<int> errors;
    QVector<int> statuses;
    int released = 0;

private:
    QThread thread;
    AudioManager manager;
    std::thread reading;
};

/// The hundredths of a second in which a tone is heard, as seconds since the recording began. Where
/// the machine is too busy to feed the device in time, some are missing.
QVector<double> times(const QVector<qint16>& sound, double hertz)
{
    constexpr int window = SoundServer::rate / 100;
    constexpr double audible = 400.0; // the clips' tones reach 4000
    QVector<double> found;
    for (int i = 0; i + window <= sound.size(); i += window) {
        if (toneStrength(sound, i, window, hertz) > audible) {
            found << static_cast<double>(i) / SoundServer::rate;
        }
    }
    return found;
}

double mean(const QVector<double>& values)
{
    return std::accumulate(values.begin(), values.end(), 0.0) / values.size();
}

} // namespace

Q_DECLARE_METATYPE(Change)

class TestAudioManager : public QObject {
    Q_OBJECT

    std::unique_ptr<SoundServer> m_server;
    QVector<double> m_tones; // heard last
    QVector<double> m_beeps;

    void listen()
    {
        QTest::qWait(400); // what is on its way to the device
        const auto sound = m_server->stopRecording();
        m_tones = times(sound, toneHertz);
        m_beeps = times(sound, beepHertz);
    }

private Q_SLOTS:
    void init()
    {
        m_server = std::make_unique<SoundServer>();
        m_beeps.clear();
    }

    void playsInStepWithTheClockAndOnlyAtNormalSpeed()
    {
        Playing playing;
        QTRY_COMPARE_WITH_TIMEOUT(playing.statuses, streaming, limitMs);
        MediaSource& source = playing.source;
        for (int tries = 0; tries < 3 && (m_beeps.isEmpty() || m_beeps.last() - m_beeps[0] < 1.9);
             ++tries) {
            m_server->startRecording();
            source.audioResyncRequested = true;
            source.resetClock(0.0);
            source.playing = true;
            QTRY_VERIFY(source.clockTime(true) > 3.4);
            source.playing = false;
            listen();
        }
        QVERIFY(m_beeps.size() > 4 && m_beeps.last() - m_beeps[0] > 1.9);
        for (const double beep : qAsConst(m_beeps)) { // whole seconds apart; a beep lasts 40 ms
            const double off = std::remainder(beep - m_beeps[0] - 0.02, 1.0);
            QVERIFY2(qAbs(off) < 0.1, qPrintable(QString::number(off)));
        }
        QVERIFY2(m_tones.size() > 170 && m_tones.last() - m_tones[0] < 3.6,
            qPrintable(QString::number(m_tones.size())));

        m_server->startRecording();
        source.clock.speed = 2.0;
        source.resetClock(1.0);
        source.playing = true;
        QTest::qWait(400);
        const auto silence = m_server->stopRecording();
        QCOMPARE(silence.count(0), silence.size());

        QVERIFY(playing.stop()); // the next file sets the output up again
        QCOMPARE(source.audioFrames.frameCount(), 0);
        source.abortRequested = false;
        playing.start();
        QTRY_COMPARE_WITH_TIMEOUT(
            playing.statuses, streaming + QVector<int>{ AudioManager::Idle } + streaming, limitMs);
        QCOMPARE(playing.errors, QVector<int>());
    }

    void scrubSlicePlaysOnce_data()
    {
        QTest::addColumn<bool>("forward");
        QTest::addColumn<double>("speed");
        QTest::newRow("forwards") << true << 1.0;
        QTest::newRow("backwards") << false << 1.0;
        QTest::newRow("forwards, at half speed") << true << 0.5;
    }
    void scrubSlicePlaysOnce()
    {
        QFETCH(bool, forward);
        QFETCH(double, speed);
        Playing playing;
        QTRY_COMPARE_WITH_TIMEOUT(playing.statuses, streaming, limitMs);
        MediaSource& source = playing.source;
        QTRY_VERIFY(source.audioFrames.endTime() > 3.0);
        source.clock.speed = speed;
        source.resetClock(2.0); // the slice begins with a beep
        source.scrubForward = forward;
        for (int tries = 0; tries < 5 && m_beeps.isEmpty(); ++tries) {
            m_server->startRecording();
            source.audioResyncRequested = true;
            source.scrubSampleCount = source.sampleRate / 4;
            source.scrubRequested = true;
            QTRY_VERIFY(!source.scrubRequested && source.scrubSampleCount == 0);
            listen();
        }
        QVERIFY2(
            !m_beeps.isEmpty() && m_tones.size() < 30, qPrintable(QString::number(m_tones.size())));
        const double later = mean(m_beeps) - mean(m_tones);
        QVERIFY2(forward ? later < 0 : later > 0, qPrintable(QString::number(later)));
    }

    void withoutOutputTheFilePlaysSilently_data()
    {
        QTest::addColumn<Change>("change");
        QTest::addColumn<int>("error"); // 0 for none
        // clang-format off
        const std::tuple<const char*, Change, int> rows[] = {
            {"no device", [](MediaSource&) { SoundServer::hideDevices(); }, AudioManager::NoDeviceError},
            {"a rate that no device takes", [](MediaSource& source) { source.sampleRate = 100000000; }, AudioManager::OpenStreamError},
            {"no rate", [](MediaSource& source) { source.sampleRate = 0; }, 0},
            {"no channels", [](MediaSource& source) { source.channels = 0; }, 0},
            {"packed doubles", [](MediaSource& source) { source.audioCodec->sample_fmt = AV_SAMPLE_FMT_DBL; }, AudioManager::UnsupportedFormatError},
            {"no sound in the file", [](MediaSource& source) { source.audioStreamCount = 0; }, 0},
            {"given up meanwhile", [](MediaSource& source) { source.abortRequested = true; }, 0},
        };
        // clang-format on
        for (const auto& [name, change, error] : rows) {
            QTest::newRow(name) << change << error;
        }
    }
    void withoutOutputTheFilePlaysSilently()
    {
        QFETCH(Change, change);
        QFETCH(int, error);
        Playing playing(change);
        const MediaSource& source = playing.source;
        const bool opened = !source.abortRequested;
        if (opened) {
            QTRY_COMPARE_WITH_TIMEOUT(
                playing.statuses, QVector<int>{ AudioManager::NoAudio }, limitMs);
        }
        QVERIFY(playing.stop());
        QCOMPARE(playing.statuses.size(), opened ? 2 : 0); // and Idle at the end
        QCOMPARE(playing.errors, error ? QVector<int>{ error } : QVector<int>());
        // The demuxer frees the sound's packets, where there are any.
        QCOMPARE(source.soundUnused.load(), opened && source.audioStreamCount > 0);
        QCOMPARE(source.audioErrorCode != 0, error == AudioManager::OpenStreamError);
    }
};

QTEST_GUILESS_MAIN(TestAudioManager)
#include "tst_audiomanager_alone.moc"
