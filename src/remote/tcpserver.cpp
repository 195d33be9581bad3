#include "tcpserver.h"

#include "settings.h"

#include <QElapsedTimer>
#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>

#include <utility>

namespace {

using Kind = RemoteCommand::Kind;

constexpr int turnMs = 5; // of lines, before the window has its turn
constexpr int longestTurnMs = 15; // where only frames are left, of which the last one counts
constexpr int pauseMs = 1; // between two turns
constexpr qint64 unreadBytes = 16384; // held for each connection; more stays with its sender
constexpr size_t mostRests = 64; // of clients that are no longer served
constexpr int drainMs = 10; // between two bufferfuls of such a client

// A socket with a full buffer does not hear that its client has gone, and would stay for good. So
// what comes is thrown away, slowly, as a flood shall not keep the window busy.
void drain(QTcpSocket* socket)
{
    const auto drainLater = [socket] {
        QTimer::singleShot(drainMs, socket, [socket] { static_cast<void>(socket->readAll()); });
    };
    QObject::connect(socket, &QTcpSocket::readyRead, socket, drainLater);
    drainLater();
}

} // namespace

TcpServer::TcpServer(QObject* parent)
    : QObject(parent)
    , m_server(new QTcpServer(this))
{
    m_nextTurn.setSingleShot(true);
    m_nextTurn.setInterval(pauseMs);
    connect(&m_nextTurn, &QTimer::timeout, this, &TcpServer::runLines);
    connect(m_server, &QTcpServer::newConnection, this, &TcpServer::createConnection);
}

bool TcpServer::listen()
{
    return !m_server->isListening()
        && m_server->listen(QHostAddress::LocalHost, static_cast<quint16>(settings().tcpPort));
}

void TcpServer::close()
{
    m_server->close();
}

quint16 TcpServer::port() const
{
    return m_server->serverPort();
}

void TcpServer::createConnection()
{
    QTcpSocket* const socket = m_server->nextPendingConnection();
    if (!socket) {
        return;
    }
    if (m_client.socket) {
        // Two that came together are accepted together: what the first one has sent by now has not
        // been looked for yet.
        m_client.socket->waitForReadyRead(0);
    }
    setAside();
    socket->setReadBufferSize(unreadBytes);
    m_client.socket = socket;
    if (socket->state() == QAbstractSocket::ConnectedState) {
        connect(socket, &QTcpSocket::disconnected, this, &TcpServer::breakConnection);
        connect(socket, &QTcpSocket::readyRead, this, &TcpServer::readData);
    }
}

void TcpServer::breakConnection()
{
    auto* const socket = qobject_cast<QTcpSocket*>(sender());
    if (!socket) {
        return;
    }
    if (socket == m_client.socket) {
        setAside();
    }
    socket->deleteLater();
}

void TcpServer::readData()
{
    if (!m_nextTurn.isActive()) {
        runLines();
    }
}

// Nobody is served then. What the client has sent is still to be done, a bufferful at most; only
// where such rests pile up they are left, as many clients shall not cost without bounds.
void TcpServer::setAside()
{
    Client client = std::exchange(m_client, {});
    if (!client.socket) {
        return;
    }
    drain(client.socket);
    if (m_earlier.size() >= mostRests
        || client.socket->bytesAvailable() + client.reader.pendingBytes() == 0) {
        return;
    }
    client.rest = std::make_unique<QBuffer>();
    client.rest->setData(client.socket->readAll());
    client.rest->open(QIODevice::ReadOnly);
    m_earlier.push_back(std::move(client));
    m_nextTurn.start();
}

// Of a flood of frames only the newest that has come counts once the turn is over.
void TcpServer::runLines()
{
    QElapsedTimer turn;
    turn.start();
    std::optional<RemoteCommand> newestFrame;
    while (const auto command = nextCommand()) {
        if (turn.elapsed() < turnMs) {
            run(*command);
        } else if (command->kind == Kind::Frame && turn.elapsed() < longestTurnMs) {
            newestFrame = command;
        } else {
            m_nextTurn.start();
            if (newestFrame && command->kind != Kind::Frame) {
                run(*newestFrame);
            }
            run(*command);
            return;
        }
    }
    if (newestFrame) {
        run(*newestFrame);
    }
}

// None where there is no line.
std::optional<RemoteCommand> TcpServer::nextCommand()
{
    while (!m_earlier.empty()) {
        if (auto command = takeLine(m_earlier.front())) {
            return command;
        }
        m_earlier.pop_front();
    }
    return takeLine(m_client);
}

std::optional<RemoteCommand> TcpServer::takeLine(Client& client)
{
    QIODevice* const device = client.rest ? static_cast<QIODevice*>(client.rest.get())
                                          : static_cast<QIODevice*>(client.socket.data());
    const auto line = device ? client.reader.next(*device) : std::nullopt;
    if (!line) {
        return std::nullopt;
    }
    const bool isFirst = std::exchange(client.beforeFirstLine, false);
    auto command = line->whole ? parseCommandLine(line->bytes) : RemoteCommand{};
    const bool isUnwelcome = isFirst && isBrowserRequest(line->bytes, line->whole);
    if (!isUnwelcome && command.kind != Kind::Exit) {
        return command;
    }
    // Forgotten first, so that nothing more of it is read; then closed, and so released.
    if (const auto ended = std::exchange(client, {}).socket) {
        isUnwelcome ? ended->abort() : ended->disconnectFromHost();
    }
    return RemoteCommand{};
}

void TcpServer::run(const RemoteCommand& command)
{
    switch (command.kind) {
    case Kind::OpenMedia:
        Q_EMIT fileChanged(command.file, command.first, command.last);
        break;
    case Kind::OpenBookmarks:
        Q_EMIT bookmarksFileChanged(command.file, command.first, command.last);
        break;
    case Kind::Frame:
        Q_EMIT frameChanged(command.first);
        break;
    case Kind::FrameRelative:
        Q_EMIT frameChangedRelative(command.first);
        break;
    case Kind::RangeStart:
        Q_EMIT rangeStartChanged(command.first);
        break;
    case Kind::RangeEnd:
        Q_EMIT rangeEndChanged(command.first);
        break;
    case Kind::None:
    case Kind::Exit: // ends the connection, which is done before
        break;
    }
}
