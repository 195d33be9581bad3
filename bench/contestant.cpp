#include "contestant.h"

#include "framecode.h"
#include "processfigures.h"
#include "samples.h"

#include <QElapsedTimer>
#include <QImage>
#include <QProcessEnvironment>
#include <QThread>

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>

namespace {

constexpr double limitSeconds = 30.0;
constexpr unsigned long lookPauseUs = 1000;
constexpr qint64 restMs = 400;
constexpr int endMs = 5000;

Display* display()
{
    static Display* const connection = XOpenDisplay(nullptr);
    return connection;
}

} // namespace

Contestant::Contestant()
{
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert("HOME", m_folder.path());
    environment.insert("TMPDIR", m_folder.path());
    m_process.setProcessEnvironment(environment);
    m_process.setStandardOutputFile(QProcess::nullDevice());
    m_process.setStandardErrorFile(QProcess::nullDevice());
}

Contestant::~Contestant()
{
    end();
}

void Contestant::end()
{
    if (m_process.state() != QProcess::NotRunning) {
        m_process.terminate();
        if (!m_process.waitForFinished(endMs)) {
            m_process.kill();
            m_process.waitForFinished();
        }
    }
}

void Contestant::launch(const std::string& path, int width)
{
    m_scale = static_cast<double>(onDisplay.width()) / width;
    m_process.start(program(), arguments() << QString::fromStdString(path));
    m_process.waitForStarted();
}

// There is no window manager that would.
void Contestant::takeKeyboard() const
{
    const Window root = DefaultRootWindow(display());
    Window top = 0;
    int x = 0;
    int y = 0;
    XTranslateCoordinates(
        display(), root, root, onDisplay.center().x(), onDisplay.center().y(), &x, &y, &top);
    XSetInputFocus(display(), top, RevertToParent, CurrentTime);
    XFlush(display());
}

void Contestant::press(const char* keysym) const
{
    const unsigned code = XKeysymToKeycode(display(), XStringToKeysym(keysym));
    XTestFakeKeyEvent(display(), code, True, CurrentTime);
    XTestFakeKeyEvent(display(), code, False, CurrentTime);
    XFlush(display());
}

int Contestant::frameOnShow() const
{
    const auto width = static_cast<unsigned>(framecode::width * m_scale) + 1;
    const auto height = static_cast<unsigned>(framecode::height * m_scale) + 1;
    XImage* const seen = XGetImage(display(), DefaultRootWindow(display()), onDisplay.x(),
        onDisplay.y(), width, height, AllPlanes, ZPixmap);
    if (!seen) {
        return -1;
    }
    const QImage image(reinterpret_cast<const uchar*>(seen->data), seen->width, seen->height,
        seen->bytes_per_line, QImage::Format_RGB32);
    const int frame = framecode::read(image, m_scale);
    XDestroyImage(seen);
    return frame;
}

double Contestant::secondsTo(int frame) const
{
    const Stopwatch watch;
    while (frameOnShow() != frame) {
        if (watch.wall() > limitSeconds) {
            return never;
        }
        QThread::usleep(lookPauseUs);
    }
    return watch.wall();
}

int Contestant::awaitBefore(int frame, double limitSeconds) const
{
    const Stopwatch watch;
    while (watch.wall() < limitSeconds) {
        if (const int now = frameOnShow(); now > 0 && now < frame) {
            return now;
        }
        QThread::usleep(lookPauseUs);
    }
    return -1;
}

int Contestant::awaitRest() const
{
    int last = frameOnShow();
    QElapsedTimer still;
    still.start();
    while (!still.hasExpired(restMs)) {
        if (const int now = frameOnShow(); now != last) {
            last = now;
            still.start();
        }
        QThread::msleep(1);
    }
    return last;
}

double Contestant::processorSeconds() const
{
    return processfigures::processorSeconds(m_process.processId());
}

double Contestant::residentBytes() const
{
    return processfigures::residentBytes(m_process.processId());
}
