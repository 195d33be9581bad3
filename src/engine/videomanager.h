#pragma once

#include <QObject>

#include <memory>

class MediaSource;
class VideoDecoder;

/// Decodes the video of a source, in a thread of its own. Its slots run there; the decode loop
/// stays inside changeMediaSource() until the source's abortRequested is set.
class VideoManager : public QObject {
    Q_OBJECT

public:
    enum Error { NoError = 0, InitError = 1 };
    Q_ENUM(Error)

    enum Status {
        Idle = 0, // no file, or decoding stopped or could not start
        NoVideo = 1, // the file has no video stream that can be decoded
        Buffering = 2, // the cache ends behind the play head
        Ready = 3, // the cache reaches at least to the play head
        EndOfStream = 4 // the last picture is out; followed at once by Ready or Buffering
    };
    Q_ENUM(Status)

    explicit VideoManager(QObject* parent = nullptr);
    ~VideoManager() override;

    /// Before the manager's thread is started.
    [[nodiscard]] Status status() const { return m_status; }

Q_SIGNALS:
    void error(VideoManager::Error err);
    void statusChanged(VideoManager::Status status);
    void neededPictureSkipped(); // on the way of a seek: it has to be run again
    void released(); // stopDecoding() has let go of the source

public Q_SLOTS:
    void changeMediaSource(MediaSource* mediaSrc);
    void startDecoding();
    void stopDecoding();

private:
    void letGo();
    void prefill();
    void reportReach();
    void setStatus(Status status);
    void raise(Error error);

    MediaSource* m_mediaSource = nullptr; // not owned
    std::unique_ptr<VideoDecoder> m_decoder; // one per file
    Error m_error = NoError;
    Status m_status = Idle;
};
