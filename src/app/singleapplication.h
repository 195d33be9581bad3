#pragma once

#include <QApplication>
#include <QLocalServer>
#include <QLockFile>
#include <QSharedMemory>

#include <memory>

class MessageQueue;
class QTimer;

/// The application of a program that runs once for each user. The first instance owns a block of
/// shared memory under a key; every later one finds it, leaves its arguments there and ends. What
/// the block cannot carry (see MessageQueue) goes over a local socket beside it.
///
/// Block, socket and start-up lock have their names in the temporary folder, so instances with
/// different TMPDIRs do not see each other. Tests run apart from a player at work by that alone.
class SingleApplication : public QApplication {
    Q_OBJECT

public:
    SingleApplication(int& argc, char** argv, const QString& uniqueKey);
    ~SingleApplication() override;

    /// Whether another instance was there first.
    [[nodiscard]] bool isRunning() const { return m_alreadyRunning; }

    /// Hands over all of `arguments` but the first to the first instance, which is this one only if
    /// `force` is set. False: nobody receives them, and this instance goes on alone.
    bool sendMessage(const QStringList& arguments, bool force);

    /// From now on, later launches find no instance. Before the end of the program, call it as soon
    /// as nothing more can be opened.
    void stopListening();

Q_SIGNALS:
    /// The arguments of a later launch, without the program; the one word of LaunchRequest::nothing
    /// if there were none. Of several launches within one poll only the last counts.
    void messageAvailable(const QStringList& msg);

public Q_SLOTS:
    void checkForMessage();

protected:
    /// The system's request to open a file is treated like a launch with it.
    bool event(QEvent* event) override;

private:
    /// As the first instance or a later one; false if the block can be neither had nor made.
    [[nodiscard]] bool findPlace();
    void becomeFirst();
    [[nodiscard]] MessageQueue queue();
    [[nodiscard]] bool sendThroughBlock(const QStringList& words);
    [[nodiscard]] bool sendOverSocket(const QStringList& words) const;
    void receiveFromSocket();

    // One launch at a time finds its place and hands over, and no first instance ends meanwhile.
    QLockFile m_startupLock;
    std::unique_ptr<QSharedMemory> m_sharedMemory; // null once stopListening() was called
    const QString m_socketName;
    QLocalServer m_server;
    QTimer* m_pollTimer = nullptr; // child; only in the first instance
    bool m_alreadyRunning = false;
};
