#pragma once

#include "commandline.h"
#include "linereader.h"

#include <QBuffer>
#include <QObject>
#include <QPointer>
#include <QTcpSocket>
#include <QTimer>

#include <deque>
#include <memory>
#include <optional>

class QTcpServer;

/// Lets other programs of this machine drive the player by lines of text. It answers nothing: every
/// line it understands becomes a signal, in the order in which they came; of a flood of frames only
/// some, and the newest. GUI thread.
///
/// One connection is served at a time, the newest; what an earlier one sends from then on is not
/// looked at. Lines are carried out for a few milliseconds at a time, so that a flood of them holds
/// up its sender, not the window.
class TcpServer : public QObject {
    Q_OBJECT

public:
    explicit TcpServer(QObject* parent = nullptr);

    /// Listens on the loopback interface, at the port of the settings. False when it listens
    /// already or cannot.
    bool listen();
    /// Listens no longer.
    void close();
    /// The port in use; 0 while not listening.
    [[nodiscard]] quint16 port() const;

Q_SIGNALS:
    // Frames are those of the line, unchecked; -1 is a range's end that was not given.
    void fileChanged(QString file, int rangeStart, int rangeEnd);
    void bookmarksFileChanged(QString file, int rangeStart, int rangeEnd);
    void frameChanged(int frame);
    void frameChangedRelative(int frame);
    void rangeStartChanged(int start);
    void rangeEndChanged(int end);

public Q_SLOTS:
    void createConnection();
    /// Releases the connection that has ended.
    void breakConnection();
    void readData();

private:
    struct Client {
        QPointer<QTcpSocket> socket; // the server's child
        std::unique_ptr<QBuffer> rest; // of a client no longer served: what it had sent until then
        LineReader reader;
        bool beforeFirstLine = true;
    };

    void setAside();
    void runLines();
    std::optional<RemoteCommand> nextCommand();
    static std::optional<RemoteCommand> takeLine(Client& client);
    void run(const RemoteCommand& command);

    QTcpServer* m_server; // child
    Client m_client; // the one that is served; without a socket: none
    std::deque<Client> m_earlier; // those with a rest to be done before
    QTimer m_nextTurn; // runs while lines are left to be done
};
