#pragma once

#include <QProcess>
#include <QTemporaryDir>
#include <QVector>

/// A private sound server whose only output is heard by nobody, but can be recorded. While one
/// lives, that output is the default sound device of this process and of the programs it starts.
class SoundServer {
public:
    static constexpr int rate = 48000; // Hz, of the output and of recordings

    /// Starts the server; a test ends with a message where it does not come up.
    SoundServer();
    ~SoundServer();

    /// As where it crashes; all who are connected lose it.
    void stop();
    /// Anew, at the same place.
    void start();

    /// From now on it leaves every request unanswered, or answers again.
    void freeze(bool frozen);

    /// Records from now on.
    void startRecording();
    /// What was heard since: the left channel.
    QVector<qint16> stopRecording();

private:
    class Child : public QProcess { // ends with the test program, however that ends
        void setupChildProcess() override;
    };
    QTemporaryDir m_folder;
    const QString m_socket = m_folder.filePath("socket");
    Child m_server;
    Child m_recorder;
};
