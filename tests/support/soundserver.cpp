#include "soundserver.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QtEndian>

#include <csignal>
#include <sys/prctl.h>

namespace {

constexpr int startLimitMs = 20000;
constexpr int pollMs = 10;

} // namespace

void SoundServer::Child::setupChildProcess()
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
}

SoundServer::SoundServer()
{
    start();
    QFile config(m_folder.filePath("asound.conf"));
    if (!config.open(QIODevice::WriteOnly)
        || config.write("pcm.!default { type pulse hint { show on description \"Default\" } }\n")
            < 0) {
        qFatal("%s cannot be written", qPrintable(config.fileName()));
    }
    qputenv("ALSA_CONFIG_PATH", "/usr/share/alsa/alsa.conf:" + config.fileName().toLocal8Bit());
    qputenv("PULSE_SERVER", "unix:" + m_socket.toLocal8Bit());
    qputenv("JACK_NO_START_SERVER", "1");
}

void SoundServer::start()
{
    auto environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : { "HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "PULSE_RUNTIME_PATH",
             "PULSE_STATE_PATH" }) {
        environment.insert(name, m_folder.path());
    }
    m_server.setProcessEnvironment(environment);
    m_server.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_server.start("pulseaudio",
        { "-n", "--daemonize=no", "--exit-idle-time=-1", "--disable-shm=yes", "--use-pid-file=no",
            "--realtime=no", "--log-level=error", "-L",
            "module-null-sink sink_name=out rate=48000 channels=2 format=s16le", "-L",
            "module-native-protocol-unix auth-anonymous=1 socket=" + m_socket });
    const QDeadlineTimer limit(startLimitMs);
    while (!QFile::exists(m_socket)) {
        if (limit.hasExpired() || m_server.waitForFinished(pollMs)) {
            qFatal("The sound server did not start: %s", qPrintable(m_server.errorString()));
        }
    }
}

void SoundServer::stop()
{
    m_server.kill();
    m_server.waitForFinished();
    QFile::remove(m_socket);
}

void SoundServer::freeze(bool frozen)
{
    kill(pid_t(m_server.processId()), frozen ? SIGSTOP : SIGCONT);
}

SoundServer::~SoundServer()
{
    for (Child* child : { &m_recorder, &m_server }) {
        child->kill();
        child->waitForFinished();
    }
}

void SoundServer::startRecording()
{
    m_recorder.start("parec",
        { "-d", "out.monitor", "--raw", "--format=s16le", "--rate=48000", "--channels=2",
            "--latency-msec=20" });
    if (!m_recorder.waitForReadyRead(startLimitMs)) {
        qFatal("Nothing is recorded: %s", m_recorder.readAllStandardError().constData());
    }
}

QVector<qint16> SoundServer::stopRecording()
{
    m_recorder.terminate();
    m_recorder.waitForFinished();
    const QByteArray bytes = m_recorder.readAllStandardOutput();
    QVector<qint16> left;
    for (int i = 0; i + 4 <= bytes.size(); i += 4) { // the two channels of a sample frame
        left << qFromLittleEndian<qint16>(bytes.constData() + i);
    }
    return left;
}
