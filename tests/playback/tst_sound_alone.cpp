#include "clips.h"
#include "playbackrig.h"
#include "soundserver.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <complex>
#include <numeric>

namespace {

constexpr double toneHertz = 220.0; // the sound of the clips,
constexpr double beepHertz = 880.0; // which beeps at every whole second

/// Amplitude of a tone in some samples.
double strength(const qint16* samples, int count, double hertz)
{
    std::complex<double> sum;
    for (int i = 0; i < count; ++i) {
        sum += double(samples[i]) * std::polar(1.0, 2.0 * M_PI * hertz * i / SoundServer::rate);
    }
    return 2.0 * std::abs(sum) / count;
}

/// The hundredths of a second in which a tone is heard, as seconds since the recording began. Where
/// the machine is too busy to feed the device in time, some are missing.
QVector<double> times(const QVector<qint16>& sound, double hertz)
{
    constexpr int window = SoundServer::rate / 100;
    constexpr double audible = 400.0; // the clips' tones reach 4000
    QVector<double> found;
    for (int i = 0; i + window <= sound.size(); i += window) {
        if (strength(&sound[i], window, hertz) > audible) {
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

/// What is heard, recorded where the sound device would be.
class TestSound : public QObject {
    Q_OBJECT

    SoundServer m_server;

    QVector<qint16> heardInTheEnd()
    {
        QTest::qWait(400); // what is on its way to the device
        return m_server.stopRecording();
    }

private Q_SLOTS:
    void playsInStepWithTheClockAndOnlyAtNormalSpeed()
    {
        PlaybackRig rig;
        QVERIFY(rig.open("soundonly.mp4"));
        rig.manager.setSpeedMultiplier(2.0);
        m_server.startRecording();
        rig.manager.play();
        QVERIFY(rig.waitForState(PlaybackManager::Paused));
        const auto silence = heardInTheEnd();
        QCOMPARE(silence.count(0), silence.size());

        rig.manager.setSpeedMultiplier(1.0);
        rig.goTo(1);
        QVERIFY(rig.waitFor(PlaybackManager::Ready));
        m_server.startRecording();
        rig.manager.play();
        QVERIFY(rig.waitForState(PlaybackManager::Paused));
        const auto sound = heardInTheEnd();
        const auto beeps = times(sound, beepHertz);
        const auto tones = times(sound, toneHertz);
        QVERIFY(beeps.size() > 8 && beeps.last() - beeps[0] > 3.9);
        for (const double beep : beeps) { // whole seconds apart; a beep lasts 40 ms
            const double off = std::remainder(beep - beeps[0] - 0.02, 1.0);
            QVERIFY2(qAbs(off) < 0.1, qPrintable(QString::number(off)));
        }
        QVERIFY2(tones.size() > 300 && tones.last() - tones[0] < 6.2,
            qPrintable(QString::number(tones.size())));
    }

    void scrubSlicePlaysOnce()
    {
        PlaybackRig rig;
        QVERIFY(rig.open("soundonly.mp4"));
        for (const auto& [from, speed] :
            { std::pair(1.5, 1.0), std::pair(3.5, 1.0), std::pair(1.5, 0.5) }) {
            rig.manager.setSpeedMultiplier(speed);
            QVector<double> beeps;
            QVector<double> tones;
            for (int tries = 0; tries < 5 && (beeps.isEmpty() || tones.size() < 15); ++tries) {
                rig.manager.seek(false, from, 0.0);
                QVERIFY(rig.waitFor(PlaybackManager::Ready));
                m_server.startRecording();
                rig.manager.seek(false, 2.0, 0.25); // the slice begins with a beep
                QVERIFY(rig.waitFor(PlaybackManager::Ready));
                const auto sound = heardInTheEnd();
                beeps = times(sound, beepHertz);
                tones = times(sound, toneHertz);
            }
            QVERIFY(!beeps.isEmpty() && tones.size() >= 15 && tones.size() < 30);
            QCOMPARE(mean(beeps) < mean(tones), from < 2.0); // or it is played backwards
        }
    }

    void soundThatCannotBePlayed_leavesTheFileSilent()
    {
        const QTemporaryDir folder;
        for (const auto& [codec, message] :
            { std::pair("-c:a pcm_f64le", "Unsupported audio format"),
                std::pair("-c:a pcm_s16le -ar 10000000", "Failed to open audio stream: ") }) {
            const QString path = folder.filePath("sound.mkv");
            QVERIFY(joinStreams(clip("videoonly.mp4").path, clip("soundonly.mp4").path,
                QString("%1 -y %2").arg(codec, path)));
            PlaybackRig rig;
            QSignalSpy errors(&rig.manager, &PlaybackManager::error);
            QVERIFY(rig.open(path));
            QCOMPARE(rig.visit(100), 100);
            QCOMPARE(errors.count(), 1);
            QVERIFY(errors.at(0).at(1).toString().startsWith(message) && !rig.manager.hasAudio());
        }
    }
};

QTEST_MAIN(TestSound)
#include "tst_sound_alone.moc"
