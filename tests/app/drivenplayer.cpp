#include "drivenplayer.h"

#include "framecode.h"

#include <QClipboard>
#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QPixmap>
#include <QRegularExpression>
#include <QScreen>
#include <QSettings>
#include <QTcpServer>
#include <QThread>
#include <QtTest>

#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <algorithm>

namespace {

constexpr int limitMs = 20000; // for anything; an instrumented build is slow
constexpr int restMs = 300; // far longer than a frame stays while a clip plays
constexpr int repeatRate = 30; // presses a second of a key held down
constexpr char ownTitles[] = "^Vantor$| -- Frame ";
constexpr QRgb markerColour = qRgb(200, 200, 200);
// Heights of the window's parts in pixels; the video is between the two timelines.
constexpr int rangeTimelineHeight = 46;
constexpr int cacheRow = 29; // of that
constexpr int timelineHeight = 40;
constexpr int buttonsHeight = 42;

QString program()
{
    return qEnvironmentVariable("VANTOR_PROGRAM", VANTOR_PROGRAM);
}

Display* display() // connected to the end; without anybody the display would start anew
{
    static Display* const connection = [] {
        XSetErrorHandler([](Display*, XErrorEvent*) { return 0; }); // a window may have gone
        return XOpenDisplay(nullptr);
    }();
    return connection;
}

QString titleOf(Window window)
{
    XTextProperty text{};
    XGetTextProperty(display(), window, &text, XInternAtom(display(), "_NET_WM_NAME", False));
    QString title = QString::fromUtf8(reinterpret_cast<const char*>(text.value));
    XFree(text.value);
    return title;
}

QImage pictureOf(Window window)
{
    return window == 0 ? QImage() : QGuiApplication::primaryScreen()->grabWindow(window).toImage();
}

void closeWindow(Window window)
{
    const Atom message = XInternAtom(display(), "WM_PROTOCOLS", False);
    XEvent event{};
    event.xclient = { ClientMessage, 0, True, display(), window, message, 32, {} };
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(display(), "WM_DELETE_WINDOW", False));
    XSendEvent(display(), window, False, NoEventMask, &event);
    XFlush(display());
}

/// A timeline's frames along its track.
struct Track {
    int margin; // pixels at both sides
    int width;
    int first;
    int last;

    Track(bool ofRange, const Scene& scene, int windowWidth)
        : margin(ofRange ? 50 : 100)
        , width(windowWidth - 2 * margin)
        , first(ofRange ? scene.first : 1)
        , last(ofRange ? scene.last : scene.clip.frameCount)
    {
    }
    [[nodiscard]] int x(int frame) const
    {
        return margin + (first == last ? 0 : (frame - first) * width / (last - first));
    }
    /// The frame whose place has the marker, two pixels wide, in a row of the picture.
    [[nodiscard]] int marked(const QImage& picture, int row) const
    {
        QVector<int> pixels;
        for (int x = 0; x < picture.width(); ++x) {
            if (picture.pixel(x, row) == markerColour) {
                pixels.append(x);
            }
        }
        int frame = last;
        while (frame >= first && pixels != QVector<int>{ x(frame), x(frame) + 1 }) {
            --frame;
        }
        return frame >= first ? frame : -1;
    }
};

QRect viewIn(const QImage& all)
{
    return all.rect().adjusted(0, rangeTimelineHeight, 0, -buttonsHeight - timelineHeight);
}

int frameInView(const QImage& view, const Clip& clip)
{
    QRect shown({}, QSize(clip.width, clip.height).scaled(view.size(), Qt::KeepAspectRatio));
    shown.moveTo((view.width() - shown.width()) / 2, (view.height() - shown.height()) / 2);
    return framecode::read(view.copy(shown), double(shown.width()) / clip.width);
}

QString worded(const QString& title, int picture, int timeline, int rangeTimeline)
{
    return QString("%1 | picture %2 | timeline %3 | range timeline %4")
        .arg(title, QString::number(picture), QString::number(timeline),
            QString::number(rangeTimeline));
}

} // namespace

QStringList Scene::arguments() const
{
    return { clip.path, QString::number(first), QString::number(last) };
}

QString Scene::sightOf(int frame) const
{
    const QString title = QString("%1 -- Frame %2").arg(clip.name).arg(frame);
    return worded(title, frame, frame, frame >= first && frame <= last ? frame : -1);
}

int freePort()
{
    QTcpServer server;
    return server.listen(QHostAddress::LocalHost) ? server.serverPort() : 0;
}

DrivenPlayer::DrivenPlayer(const QVariantMap& settings)
{
    QSettings file(m_settingsPath, QSettings::IniFormat);
    file.setValue("preferences/tcpPort", freePort()); // beside other tests
    file.setValue("main/showRangeTimeline", true);
    file.setValue("main/showMenuBar", false);
    file.setValue("preferences/resizeToFit", false);
    for (auto setting = settings.begin(); setting != settings.end(); ++setting) {
        file.setValue(setting.key(), setting.value());
    }
    QDir(m_folder.path()).mkdir("tmp");
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert("HOME", m_folder.path());
    environment.insert("TMPDIR", m_folder.filePath("tmp"));
    m_process.setProcessEnvironment(environment);
    m_process.setProcessChannelMode(QProcess::ForwardedChannels);
}

DrivenPlayer::~DrivenPlayer()
{
    holdButton(false); // also where a test has failed meanwhile
    m_process.terminate(); // in order, so that it leaves no shared memory
    if (!m_process.waitForFinished(limitMs)) {
        m_process.kill();
        m_process.waitForFinished();
    }
}

Clip DrivenPlayer::linked(const Clip& clip, const QString& name) const
{
    Clip second = clip;
    second.name = name;
    second.path = m_folder.filePath(name);
    QFile::link(clip.path, second.path);
    return second;
}

bool DrivenPlayer::start(const QStringList& arguments)
{
    m_process.waitForFinished(); // one that was killed
    QStringList words = m_wrapper + QStringList(program()) + arguments;
    const QString command = words.takeFirst();
    m_process.start(command, words);
    return m_process.waitForStarted() && focus();
}

bool DrivenPlayer::focus(const QString& title)
{
    const QByteArray titles = title.isEmpty() ? QByteArray(ownTitles) : '^' + title.toUtf8() + '$';
    Window found = 0;
    const bool came = QTest::qWaitFor([&] { return (found = window(titles)) != 0; }, limitMs);
    if (title.isEmpty()) {
        m_window = found; // another one once its kind has changed
    }
    XRaiseWindow(display(), found); // the console may lie on it
    XSetInputFocus(display(), found, RevertToParent, CurrentTime);
    XFlush(display());
    return came;
}

unsigned long DrivenPlayer::window(const char* titles) const
{
    QProcess search;
    search.start("xdotool",
        { "search", "--onlyvisible", "--all", "--pid", QString::number(m_process.processId()),
            "--name", titles });
    search.waitForFinished();
    return search.readAllStandardOutput().trimmed().toULong();
}

int DrivenPlayer::launchAgain(const QStringList& arguments) const
{
    QProcess process;
    process.setProcessEnvironment(m_process.processEnvironment());
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.setWorkingDirectory(m_folder.path());
    process.start(program(), arguments);
    return process.waitForFinished(limitMs) ? process.exitCode() : -1;
}

bool DrivenPlayer::close()
{
    static_cast<void>(focus()); // the window is another one once its kind has changed
    closeWindow(m_window);
    return m_process.waitForFinished(limitMs) && m_process.exitStatus() == QProcess::NormalExit
        && m_process.exitCode() == 0;
}

QVariant DrivenPlayer::setting(const QString& key) const
{
    return QSettings(m_settingsPath, QSettings::IniFormat).value(key);
}

QString DrivenPlayer::title() const
{
    return titleOf(m_window);
}

int DrivenPlayer::frame() const
{
    const QString text = title();
    return text.contains(" -- Frame ") ? text.section(' ', -1).toInt() : -1;
}

int DrivenPlayer::awaitRest() const
{
    int last = 0;
    QElapsedTimer still;
    const auto rests = [&] {
        if (const int now = frame(); now != last) {
            last = now;
            still.start();
        }
        return still.hasExpired(restMs);
    };
    static_cast<void>(QTest::qWaitFor(rests, limitMs));
    return last;
}

QString DrivenPlayer::sight(const Scene& scene) const
{
    XRaiseWindow(display(), m_window); // the console may lie on it
    const QString title = titleOf(m_window);
    const QImage all = pictureOf(m_window);
    const QRect view = viewIn(all);
    return worded(title, frameInView(all.copy(view), scene.clip),
        Track(false, scene, all.width()).marked(all, view.bottom() + 26),
        Track(true, scene, all.width()).marked(all, 20));
}

QString DrivenPlayer::awaitSight(const Scene& scene, int frame) const
{
    QString seen;
    const auto isSeen = [&] { return (seen = sight(scene)) == scene.sightOf(frame); };
    static_cast<void>(QTest::qWaitFor(isSeen, limitMs));
    return seen;
}

QImage DrivenPlayer::console() const
{
    return pictureOf(window("^Console$"));
}

QString DrivenPlayer::textOf(const QString& title)
{
    QGuiApplication::clipboard()->setText({});
    if (!focus(title)) {
        return {};
    }
    QString text; // while the window is there to give it
    const auto copies = [&] { // anew where a further line has taken the selection away
        hold("Control+a");
        hold("Control+c");
        return QTest::qWaitFor(
            [&] { return !(text = QGuiApplication::clipboard()->text()).isEmpty(); }, restMs);
    };
    static_cast<void>(QTest::qWaitFor(copies, limitMs));
    return text;
}

QString DrivenPlayer::consoleText()
{
    const QString text = textOf("Console");
    focus();
    // Every start says first what it is.
    return text.contains(QRegularExpression("^INFO: Vantor \\d")) ? text.section('\n', 1)
                                                                  : "No version: " + text;
}

QImage DrivenPlayer::view() const
{
    const QImage all = pictureOf(m_window);
    return all.copy(viewIn(all));
}

int DrivenPlayer::picture(const Clip& clip) const
{
    return frameInView(view(), clip);
}

QString DrivenPlayer::turn(const Clip& clip) const
{
    const QImage picture = view();
    for (int turns = 0; turns < 8; ++turns) {
        const bool mirrored = turns >= 4;
        const int degrees = turns % 4 * 90;
        const QImage back = picture.transformed(QTransform().rotate(-degrees));
        if (frameInView(back.mirrored(mirrored, false), clip) > 0) {
            return (mirrored ? "mirrored" : "") + QString::number(degrees);
        }
    }
    return {};
}

bool DrivenPlayer::isCached(const Scene& scene, int frame) const
{
    const QImage all = pictureOf(m_window);
    const QRgb place = all.pixel(Track(true, scene, all.width()).x(frame) + 2, cacheRow);
    return qBlue(place) > qRed(place) + 30; // the greys are a little blue, too
}

void DrivenPlayer::hold(const QString& key, int times)
{
    QVector<unsigned> codes;
    for (const QString& name : key.split('+')) {
        const bool modifies = QStringList{ "Control", "Shift", "Alt" }.contains(name);
        const QString symbol = modifies ? name + "_L" : name;
        codes.append(XKeysymToKeycode(display(), XStringToKeysym(qPrintable(symbol))));
    }
    // A key that goes down in the very millisecond in which it went up counts as one held down.
    XSync(display(), False);
    QThread::msleep(2);
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < times; ++i) {
        QThread::msleep(
            static_cast<unsigned>(qMax(0, i * 1000 / repeatRate - int(timer.elapsed()))));
        for (const unsigned code : codes) {
            XTestFakeKeyEvent(display(), code, True, CurrentTime);
        }
        std::for_each(codes.rbegin(), codes.rend(),
            [](unsigned code) { XTestFakeKeyEvent(display(), code, False, CurrentTime); });
        XFlush(display());
    }
}

void DrivenPlayer::point(bool rangeTimeline, const Scene& scene, int frame, bool above)
{
    const QImage all = pictureOf(m_window);
    const int top = rangeTimeline ? 0 : viewIn(all).bottom() + 1;
    pointAt({ Track(rangeTimeline, scene, all.width()).x(frame), top + (above ? 5 : 30) });
}

void DrivenPlayer::pointAtVideo()
{
    pointAt(viewIn(pictureOf(m_window)).center());
}

void DrivenPlayer::pointAtMenus()
{
    pointAt({ 15, 12 });
}

void DrivenPlayer::pointAt(QPoint place)
{
    Window child = 0;
    XTranslateCoordinates(display(), m_window, DefaultRootWindow(display()), place.x(), place.y(),
        &place.rx(), &place.ry(), &child);
    XTestFakeMotionEvent(display(), -1, place.x(), place.y(), CurrentTime);
    XFlush(display());
}

void DrivenPlayer::movePointer(int pixels)
{
    XTestFakeRelativeMotionEvent(display(), pixels, 0, CurrentTime);
    XFlush(display());
}

void DrivenPlayer::holdButton(bool down)
{
    XTestFakeButtonEvent(display(), 1, down ? True : False, CurrentTime);
    XFlush(display());
}

void DrivenPlayer::resize(int width, int height)
{
    XResizeWindow(display(), m_window, static_cast<unsigned>(width), static_cast<unsigned>(height));
    XFlush(display());
}
