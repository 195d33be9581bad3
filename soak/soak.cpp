#include "soak.h"

#include <QDateTime>
#include <QDir>
#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>
#include <QSettings>
#include <QTcpSocket>
#include <QtTest>

#include <algorithm>
#include <cstdio>
#include <sys/stat.h>

namespace {

constexpr int limitMs = 20000; // for anything that is to come about
constexpr int arrivalMs = 300; // of a launch; the first instance looks for it every 200 ms
constexpr int betweenKeysMs = 5; // twice the same at one time would be taken for a repetition
constexpr int deedsBetweenChecks = 10;
constexpr int mostSettlingSeconds = 120;
constexpr QSize checkedSize(800, 600); // large enough for every clip's number to be read
constexpr int floodLines = 5000;

// How the program is seen to stand still in the same situation, time and again.
const Scene& reference()
{
    static const Scene scene{ clip("opengop.mp4") };
    return scene;
}

bool isReadable(const Clip& clip) // by its number, as the view shows it
{
    return clip.hasVideo && clip.name != "turned.mp4" && clip.name != "anamorphic.mp4";
}

void write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        qFatal("cannot write %s", qPrintable(path));
    }
}

QByteArray bytesOf(const Clip& clip)
{
    QFile file(clip.path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

// clang-format off
const QVector<Soak::Deed>& Soak::deeds()
{
    static const QVector<Deed> table{
        { 10, &Soak::openGood }, { 5, &Soak::openBroken }, { 4, &Soak::launchAgain },
        { 10, &Soak::jump }, { 10, &Soak::step }, { 8, &Soak::scrubTimeline },
        { 6, &Soak::scrubPicture }, { 14, &Soak::play }, { 4, &Soak::loop },
        { 8, &Soak::bookmarks }, { 3, &Soak::saveBookmarks }, { 8, &Soak::range },
        { 3, &Soak::flood }, { 2, &Soak::webPage }, { 2, &Soak::cacheSize },
        { 6, &Soak::windowSize }, { 3, &Soak::turnThere }, { 3, &Soak::sound },
    };
    return table;
}
// clang-format on

Soak::Soak(quint32 seed, int seconds)
    : m_random(seed)
    , m_seconds(seconds)
    // A console on show takes the keyboard with each error, at any moment between two keys.
    , m_player({ { "preferences/tcpPort", m_port }, { "console/displayConsoleOnType", 0 } })
{
    makeFiles();
}

void Soak::makeFiles()
{
    for (const Clip& clip : allClips()) {
        m_good << clip.path;
    }
    for (const QString& name : { QString("a b.mkv"), QString::fromUtf8("Zw\303\266lf.mkv") }) {
        m_good << m_player.linked(clip("longgop.mkv"), name).path;
    }
    QSettings marks(m_player.path("marks.bmk"), QSettings::IniFormat);
    marks.setValue("main/mediaPath", m_player.linked(clip("hevc.mp4"), "marked.mp4").path);
    marks.setValue("main/frames", "20,40,60,");
    marks.setValue("main/ranges", QStringList{ "5,15,5 - 15", "70,90,70 - 90" });

    const QByteArray whole = bytesOf(clip("mpeg4.avi"));
    QByteArray damaged = bytesOf(reference().clip);
    for (int i = 0; i < damaged.size(); i += 997) {
        damaged[i] = static_cast<char>(~damaged[i]);
    }
    const auto broken = [this](const char* name, const QByteArray& bytes) {
        m_broken << m_player.path(name);
        write(m_broken.last(), bytes);
    };
    broken("empty.mkv", {});
    broken("text.mp4", "These are words, no pictures.\n");
    broken("text.txt", "words");
    broken("words.bmk", "[main\nmediaPath=");
    broken("damaged.mp4", damaged);
    broken("cut.avi", whole.left(whole.size() / 2));
    broken("cut.mkv", bytesOf(clip("opengop.mkv")).left(30000));
    m_broken << m_player.path("folder.mp4") << m_player.path("pipe.mp4")
             << m_player.path("pipe.bmk") << m_player.path("missing.mov");
    QDir().mkdir(m_player.path("folder.mp4"));
    for (const char* pipe : { "pipe.mp4", "pipe.bmk" }) {
        mkfifo(qPrintable(m_player.path(pipe)), S_IRUSR | S_IWUSR);
    }
}

void Soak::tell(const QString& what) const
{
    std::printf("%7.1f s  %s\n", double(m_time.elapsed()) / 1000.0, qPrintable(what));
    std::fflush(stdout);
}

QString Soak::run()
{
    const int segmentsBefore = Footprint::of(0).segments;
    m_time.start();
    if (!m_player.start({ reference().clip.path })) {
        return "no window came";
    }
    int allWeights = 0;
    std::for_each(deeds().begin(), deeds().end(), [&](auto& deed) { allWeights += deed.weight; });
    for (int count = 1; m_fault.isEmpty() && !m_time.hasExpired(m_seconds * 1000LL); ++count) {
        int number = any(allWeights);
        const auto* deed = deeds().begin();
        while (number >= deed->weight) {
            number -= (deed++)->weight;
        }
        tell(QString("%1. %2").arg(count).arg((this->*deed->act)()));
        if (m_fault.isEmpty() && count % deedsBetweenChecks == 0) {
            check();
        }
    }
    if (m_fault.isEmpty()) {
        end(segmentsBefore);
    }
    if (!m_fault.isEmpty()) {
        QGuiApplication::primaryScreen()->grabWindow(0).save("failed.png");
    }
    return m_fault;
}

void Soak::end(int segmentsBefore)
{
    const QString grown = growth(m_footprints);
    if (!grown.isEmpty()) {
        m_fault = "it grows: " + grown;
    } else if (m_footprints.size() < 2) {
        m_fault = "not enough time to see whether it grows";
    } else if (!m_player.close()) {
        m_fault = "it does not end well";
    } else if (Footprint::of(0).segments > segmentsBefore) {
        m_fault = "it leaves shared memory behind";
    }
}

// --- Looking at it
// ---------------------------------------------------------------------------------------------------

void Soak::check()
{
    QTest::qWait(arrivalMs);
    m_player.focus();
    m_player.resize(checkedSize.width(), checkedSize.height());
    const QString itsFrame = showItsFrame();
    const int frame = 1 + any(reference().clip.frameCount);
    const QString file =
        QString("file \"%1\" 1 %2\n").arg(reference().clip.path).arg(reference().clip.frameCount);
    for (const int wanted : { frame, 1 }) { // a jump while it loads; then all of it is cached
        if (!m_fault.isEmpty()) {
            return;
        }
        send(file.toUtf8() + "frame " + QByteArray::number(wanted) + '\n');
        const QString seen = m_player.awaitSight(reference(), wanted);
        if (seen != reference().sightOf(wanted)) {
            m_fault = QString("asked for frame %1, it shows: %2").arg(wanted).arg(seen);
        }
    }
    const auto isCached = [&] { return m_player.isCached(reference(), reference().last - 5); };
    if (m_fault.isEmpty() && !QTest::qWaitFor(isCached, limitMs)) {
        m_fault = "the clip does not come into the cache";
    }
    const Footprint footprint = Footprint::of(m_player.processId());
    if (m_time.elapsed() > qMin(mostSettlingSeconds, m_seconds / 3) * 1000LL) {
        m_footprints << footprint;
    }
    tell(QString("%1; frame %2; %3").arg(itsFrame).arg(frame).arg(footprint.text()));
}

// At rest, the picture is that of the title.
QString Soak::showItsFrame()
{
    m_player.hold("k");
    static_cast<void>(m_player.awaitRest());
    const QString name = m_player.title().section(" -- Frame ", 0, 0);
    const auto known = std::find_if(allClips().begin(), allClips().end(),
        [&](const Clip& clip) { return clip.name == name && isReadable(clip); });
    if (known == allClips().end()) {
        return "at rest";
    }
    const auto isRight = [&] { // the sound may end after the last picture
        return m_player.picture(*known) == qMin(m_player.frame(), known->frameCount);
    };
    if (m_fault.isEmpty() && !QTest::qWaitFor(isRight, limitMs)) {
        m_fault = QString("it says %1, the picture is %2")
                      .arg(m_player.title())
                      .arg(m_player.picture(*known));
    }
    return "at rest at " + m_player.title();
}

// --- What is done to it
// ----------------------------------------------------------------------------------------------

QString Soak::press(const QStringList& keys)
{
    m_player.focus();
    for (const QString& key : keys) {
        m_player.hold(key.section('*', 0, 0), qMax(1, key.section('*', 1).toInt()));
        QTest::qWait(betweenKeysMs);
    }
    return "press " + keys.join(' ');
}

QString Soak::send(const QByteArray& lines)
{
    QTcpSocket client;
    client.connectToHost(QHostAddress::LocalHost, static_cast<quint16>(m_port));
    client.write(lines);
    client.disconnectFromHost(); // when all is written
    if (client.state() != client.UnconnectedState && !client.waitForDisconnected(limitMs)) {
        m_fault = "the remote control does not read: " + client.errorString();
    }
    return "send " + QString::fromUtf8(lines.left(200)).trimmed().replace('\n', " | ");
}

QString Soak::open(const QString& path)
{
    const int first = any(2) == 0 ? -1 : any(120);
    const int last = any(2) == 0 ? -1 : any(300);
    if (any(2) == 0) {
        return send(QString("file \"%1\" %2 %3\n").arg(path).arg(first).arg(last).toUtf8());
    }
    const QStringList arguments{ path, QString::number(first), QString::number(last) };
    return launch(arguments);
}

QString Soak::launch(const QStringList& arguments)
{
    if (const int code = m_player.launchAgain(arguments); code != 0) {
        m_fault = QString("a further launch ended with %1").arg(code);
    }
    return "launch " + arguments.join(' ');
}

QString Soak::openGood()
{
    return open(anyOf(m_good));
}

QString Soak::openBroken()
{
    return open(anyOf(m_broken));
}

QString Soak::launchAgain()
{
    QStringList done;
    for (int launches = any(3); launches >= 0; --launches) {
        done << launch(any(3) == 0 ? QStringList() : QStringList(anyOf(m_good)));
    }
    return done.join("; ");
}

QString Soak::jump()
{
    static const QStringList keys{ "Home", "End", "Control+Left", "Control+Right", "c" };
    return any(2) == 0 ? press({ anyOf(keys) })
                       : send("frame " + QByteArray::number(any(450) - 5) + '\n');
}

QString Soak::step()
{
    return press({ anyOf({ "Left", "Right" }) + '*' + QString::number(1 + any(30)) });
}

QString Soak::scrubTimeline()
{
    const bool ofRange = any(2) == 0;
    QStringList frames;
    m_player.focus();
    for (int points = 2 + any(8); points > 0; --points) {
        const int frame = 1 + any(reference().clip.frameCount);
        m_player.point(ofRange, reference(), frame, any(8) == 0);
        m_player.holdButton(true);
        QTest::qWait(any(60));
        frames << QString::number(frame);
    }
    m_player.holdButton(false);
    return QString("scrub on the %1 by %2")
        .arg(ofRange ? "range timeline" : "timeline", frames.join(' '));
}

QString Soak::scrubPicture()
{
    QStringList moves;
    m_player.focus();
    m_player.pointAtVideo();
    m_player.holdButton(true);
    for (int count = 2 + any(12); count > 0; --count) {
        moves << QString::number(any(300) - 150);
        m_player.movePointer(moves.last().toInt());
        QTest::qWait(any(40));
    }
    m_player.holdButton(false);
    return "scrub on the picture by " + moves.join(' ');
}

QString Soak::play()
{
    static const QStringList speeds{ "0", "8", "9", "minus*4", "equal", "equal*3", "equal*20" };
    QStringList keys{ anyOf({ "space", "l" }) };
    if (any(2) == 0) {
        keys << anyOf(speeds);
    }
    const int playedMs = any(2000);
    const QString pressed = press(keys);
    QTest::qWait(playedMs);
    return QString("%1, wait %2 ms").arg(pressed).arg(playedMs);
}

QString Soak::loop()
{
    return press({ anyOf({ "Control+l", "Control+Shift+l", "Control+Alt+l" }) });
}

QString Soak::bookmarks()
{
    static const QStringList keys{ "f", "r", "Up", "Down", "Control+Up", "Control+Down",
        "bracketleft", "bracketright", "Control+bracketleft", "Control+bracketright", "Control+f",
        "Shift+f", "Control+r" };
    QStringList some;
    for (int count = 1 + any(8); count > 0; --count) {
        some << anyOf(keys);
    }
    return press(some);
}

QString Soak::saveBookmarks()
{
    const QString file = m_player.path("marks.bmk");
    QTest::qWait(arrivalMs);
    send("file \"" + file.toUtf8() + "\"\n");
    const auto isOpen = [this] { return m_player.title().startsWith("marked.mp4 -- "); };
    if (!QTest::qWaitFor(isOpen, limitMs)) {
        m_fault = "a bookmarks file is not opened; its title is " + m_player.title();
    }
    const QString pressed = press({ "f", "Right*3", "r" });
    const QDateTime before = QFileInfo(file).lastModified();
    const auto isSaved = [&] { // pressed while it loads, the key does nothing
        press({ "Control+s" });
        return QTest::qWaitFor([&] { return QFileInfo(file).lastModified() != before; }, 500);
    };
    if (!QTest::qWaitFor(isSaved, limitMs)) {
        m_fault = "a bookmarks file is not saved";
    }
    return "open bookmarks, " + pressed + ", save";
}

QString Soak::range()
{
    static const QStringList keys{ "i", "o", "comma", "period", "Control+p" };
    return any(2) == 0 ? press({ anyOf(keys), anyOf(keys) })
                       : send("rstart " + QByteArray::number(any(400) - 50) + "\nrend "
                           + QByteArray::number(any(400) - 50) + '\n');
}

QString Soak::flood()
{
    static const QStringList words{ "frame", "frameRelative", "rstart", "rend", "junk \"" };
    const bool isMixed = any(2) == 0;
    QByteArray lines;
    for (int count = 0; count < floodLines; ++count) {
        lines += (isMixed ? anyOf(words) : words[0]).toUtf8() + ' '
            + QByteArray::number(any(250) - 5) + '\n';
    }
    return send(lines);
}

QString Soak::webPage()
{
    return send("POST /" + QByteArray(any(2) * 100'000, 'a') + " HTTP/1.1\r\n\r\nframe 7\nexit\n");
}

QString Soak::cacheSize()
{
    const QString megabytes = QString::number(256 + any(1000));
    press({ "Control+Shift+p" });
    if (!m_player.focus("Preferences")) {
        m_fault = "the preferences do not open";
        return m_fault;
    }
    m_player.hold("Tab");
    for (const QChar digit : megabytes) {
        m_player.hold(digit);
    }
    m_player.hold("Return");
    const auto saved = [this] { return m_player.setting("preferences/cacheSize").toString(); };
    if (!QTest::qWaitFor([&] { return saved() == megabytes; }, limitMs)) {
        m_fault = "the cache size that is saved is " + saved();
    }
    m_player.focus();
    return QString("set the cache to %1 MB").arg(megabytes);
}

QString Soak::windowSize()
{
    if (any(2) == 0) {
        return press({ anyOf({ "1", "2", "3", "Control+2" }) });
    }
    const QSize size(200 + any(1000), 150 + any(600));
    m_player.resize(size.width(), size.height());
    return QString("resize to %1 x %2").arg(size.width()).arg(size.height());
}

// And back again, for the checks.
QString Soak::turnThere()
{
    const QString key = anyOf({ "x", "y", "Control+Shift+m", "Control+Shift+n", "F2", "F3", "F6" });
    return press({ key, key });
}

QString Soak::sound()
{
    return press({ anyOf({ "m", "Shift+Up*20", "Shift+Down*5", "Control+Shift+a" }) });
}
