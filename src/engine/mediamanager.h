#pragma once

#include "seeklanding.h"

#include <QObject>

#include <memory>

class MediaReader;
class MediaSource;

/// Demuxes the open file, in a thread of its own. Its slots run there, one at a time; load() and
/// seek() return only when reading stops: at the end of the file, on an error, a seek request or an
/// abort.
class MediaManager : public QObject {
    Q_OBJECT

public:
    enum Error { NoError = 0, OpenError = 1, ReadError = 2, SeekError = 3 };
    Q_ENUM(Error)

    enum Status {
        NoMedia = 1,
        Loading = 2,
        Loaded = 3, // the file is open and the first packets are queued
        Reading = 4,
        EndOfFile = 5, // every packet and both end markers are queued
        Seeked = 6, // the first packets after the seek are queued
        InvalidMedia = 7
    };
    Q_ENUM(Status)

    explicit MediaManager(QObject* parent = nullptr);
    ~MediaManager() override;

    /// Before the manager's thread is started.
    [[nodiscard]] Status status() const { return m_status; }

Q_SIGNALS:
    void error(MediaManager::Error err);
    void statusChanged(MediaManager::Status status);
    void soundFound(); // the file that is loading has sound that can be decoded
    void released(); // unload() has let go of the source: nothing of it is used after this

public Q_SLOTS:
    /// A source whose abortRequested is set meanwhile reports neither Loaded nor an error.
    void load(MediaSource* mediaSrc);
    void unload();
    void read();
    void seek();

private:
    [[nodiscard]] bool isOpen() const;
    void letGo();
    void runSeek(double target, double reach);
    void discardAndFlush(double target, bool judged);
    SeekLanding::Verdict awaitLanding();
    bool readWhileWaiting();
    void retreat(double target);
    void offerEndMarkers();
    void setStatus(Status status);
    void raise(Error error);

    MediaSource* m_mediaSrc = nullptr; // not owned
    std::unique_ptr<MediaReader> m_reader; // one per file
    bool m_endMarked = false; // both end markers are queued since the last load or seek
    Error m_lastError = NoError;
    Status m_status = NoMedia;
};
