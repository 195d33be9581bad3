#include "singleapplication.h"

#include "logger.h"
#include "messagequeue.h"

#include <QDataStream>
#include <QDeadlineTimer>
#include <QDir>
#include <QFileOpenEvent>
#include <QLocalSocket>
#include <QThread>
#include <QTimer>

#include <unistd.h>

namespace {

constexpr int blockSize = 5000; // bytes
constexpr int pollMs = 200;
constexpr int socketBufferSize = 1 << 20; // bytes; a command line is shorter by far
constexpr auto streamVersion = QDataStream::Qt_5_15;

// No launch waits longer than these for one that hangs. They are never reached otherwise.
constexpr int startupLockMs = 1000;
constexpr int endLockMs = 100;
constexpr int socketMs = 1000;
constexpr unsigned long lockRetryMs = 1;

// Whether the lock could be taken or not, life goes on: it only keeps apart what rarely meets.
void take(QLockFile& lock, int withinMs)
{
    const QDeadlineTimer deadline(withinMs);
    while (
        !lock.tryLock(0) && lock.error() == QLockFile::LockFailedError && !deadline.hasExpired()) {
        QThread::msleep(lockRetryMs); // QLockFile's own pauses start at 100 ms
    }
}

QString userKey(const QString& uniqueKey)
{
    return uniqueKey + QLatin1Char('-') + QString::number(getuid());
}

} // namespace

SingleApplication::SingleApplication(int& argc, char** argv, const QString& uniqueKey)
    : QApplication(argc, argv)
    , m_startupLock(
          QDir::tempPath() + QLatin1Char('/') + userKey(uniqueKey) + QLatin1String(".lock"))
    , m_sharedMemory(std::make_unique<QSharedMemory>(uniqueKey))
    , m_socketName(userKey(uniqueKey))
{
    take(m_startupLock, startupLockMs);
    // The second time helps where another block has the key of the file that was just made for this
    // one: one left behind, whose own file has been removed, or one that was made this very moment.
    if (!findPlace() && !findPlace()) {
        Logger::displayWarning(
            tr("Later launches will open windows of their own: %1. Check that files can be made "
               "in %2.")
                .arg(m_sharedMemory->errorString(), QDir::tempPath()));
    }
    if (!m_alreadyRunning) {
        m_startupLock.unlock();
    }
}

// The block is looked for before it is created, as creating resets the lock of a block in use. A
// block that a killed instance has left goes with the last one to detach from it, so it is attached
// to twice: the second time finds only a block that somebody uses.
bool SingleApplication::findPlace()
{
    if (m_sharedMemory->attach()) {
        m_sharedMemory->detach();
    }
    m_alreadyRunning = m_sharedMemory->attach();
    if (m_alreadyRunning) {
        return true;
    }
    if (!m_sharedMemory->create(blockSize)) {
        return false;
    }
    becomeFirst();
    return true;
}

SingleApplication::~SingleApplication()
{
    stopListening();
}

void SingleApplication::becomeFirst()
{
    if (m_sharedMemory->lock()) {
        queue().clear();
        m_sharedMemory->unlock();
    }
    m_pollTimer = new QTimer(this);
    connect(m_pollTimer, &QTimer::timeout, this, &SingleApplication::checkForMessage);
    m_pollTimer->start(pollMs);

    connect(&m_server, &QLocalServer::newConnection, this, &SingleApplication::receiveFromSocket);
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    QLocalServer::removeServer(m_socketName); // of an instance that was killed
    if (!m_server.listen(m_socketName)) {
        Logger::displayWarning(
            tr("Launches with long or foreign paths cannot be received: %1. Check that files can "
               "be made in %2.")
                .arg(m_server.errorString(), QDir::tempPath()));
    }
}

// The socket goes first: as long as the block is there, no other instance listens under its name.
void SingleApplication::stopListening()
{
    if (!m_sharedMemory) {
        return;
    }
    if (m_pollTimer) {
        take(m_startupLock, endLockMs);
        m_pollTimer->stop();
        m_server.close();
    }
    m_sharedMemory.reset();
    m_startupLock.unlock();
}

MessageQueue SingleApplication::queue()
{
    return MessageQueue({ static_cast<char*>(m_sharedMemory->data()),
        static_cast<size_t>(m_sharedMemory->size()) });
}

bool SingleApplication::sendMessage(const QStringList& arguments, bool force)
{
    if ((!m_alreadyRunning && !force) || !m_sharedMemory || !m_sharedMemory->isAttached()) {
        return false;
    }
    const QStringList words = arguments.mid(1);
    // Without a socket nothing is sent: the block would make another file of it, or none at all.
    const bool isSent = MessageQueue::carries(words) ? sendThroughBlock(words)
                                                     : m_alreadyRunning && sendOverSocket(words);
    if (m_alreadyRunning && !isSent) {
        stopListening(); // attached, this instance would pass for the first one after its end
    } else {
        m_startupLock.unlock();
    }
    return isSent;
}

bool SingleApplication::sendThroughBlock(const QStringList& words)
{
    if (!m_sharedMemory->lock()) {
        return false;
    }
    queue().append(MessageQueue::textOf(words));
    return m_sharedMemory->unlock();
}

// Once written, the words are safe: the system keeps them until the first instance, however busy,
// comes to read them. They cannot contain the null character between them.
bool SingleApplication::sendOverSocket(const QStringList& words) const
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(streamVersion);
    stream << words.join(QChar::Null);

    QLocalSocket socket;
    socket.connectToServer(m_socketName, QIODevice::WriteOnly);
    if (!socket.waitForConnected(socketMs)) {
        return false;
    }
    socket.write(bytes);
    while (socket.bytesToWrite() > 0) {
        if (!socket.waitForBytesWritten(socketMs)) {
            return false;
        }
    }
    socket.disconnectFromServer();
    return socket.state() == QLocalSocket::UnconnectedState || socket.waitForDisconnected(socketMs);
}

void SingleApplication::receiveFromSocket()
{
    while (QLocalSocket* socket = m_server.nextPendingConnection()) {
        socket->setReadBufferSize(socketBufferSize);
        connect(socket, &QLocalSocket::disconnected, this, [this, socket] {
            QDataStream stream(socket);
            stream.setVersion(streamVersion);
            QString text;
            stream >> text;
            socket->deleteLater();
            if (stream.status() == QDataStream::Ok) {
                checkForMessage(); // what was sent before comes before
                Q_EMIT messageAvailable(text.split(QChar::Null));
            }
        });
    }
}

void SingleApplication::checkForMessage()
{
    if (!m_sharedMemory || !m_sharedMemory->lock()) {
        return;
    }
    const QStringList words = MessageQueue::wordsOf(queue().takeLast());
    m_sharedMemory->unlock();
    if (!words.isEmpty()) {
        Q_EMIT messageAvailable(words);
    }
}

bool SingleApplication::event(QEvent* event)
{
    if (event->type() != QEvent::FileOpen) {
        return QApplication::event(event);
    }
    const QString file = static_cast<QFileOpenEvent*>(event)->file();
    if (!sendMessage({ QString(), file }, true)) {
        checkForMessage();
        Q_EMIT messageAvailable({ file });
    }
    return true;
}
