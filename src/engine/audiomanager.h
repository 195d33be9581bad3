#pragma once

#include "audiooutput.h"

#include <QObject>

#include <memory>

class AudioDecoder;
class MediaSource;

/// Decodes the sound of the open file and plays it on the default output device. It lives in the
/// audio thread, which stays inside changeMediaSource() until the source's abortRequested is set.
class AudioManager : public QObject {
    Q_OBJECT

public:
    enum Error {
        NoError = 0,
        InitError = 1,
        NoDeviceError = 2,
        OpenStreamError = 3,
        StartStreamError = 4,
        StopStreamError = 5,
        CloseStreamError = 6,
        TerminateError = 7,
        UnsupportedFormatError = 8
    };
    Q_ENUM(Error)

    enum Status {
        Idle = 0, // no file, or stopped
        NoAudio = 1, // no usable sound or no output: the file plays silently
        Decoding = 2, // decoding, the output is not (yet) started
        StreamClosed = 3, // endWritingStream closed the output
        Streaming = 4 // the output runs
    };
    Q_ENUM(Status)

    explicit AudioManager(QObject* parent = nullptr);
    ~AudioManager() override;

    /// Audio thread; elsewhere only before the object is moved to it.
    [[nodiscard]] Status status() const { return m_status; }

public Q_SLOTS: // Audio thread.
    /// Searches for the output devices, which takes long, while the file is still being read. Where
    /// that fails changeMediaSource() tries again, and tells.
    void prepareOutput();
    /// Decodes and plays `mediaSource` until it is aborted; null only stops. A source that was
    /// given up in the meantime is not touched.
    void changeMediaSource(MediaSource* mediaSource);
    void beginWritingStream();
    void endWritingStream();
    void startDecoding();
    /// Lets go of the source and of the output device.
    void stopDecoding();

Q_SIGNALS:
    void error(AudioManager::Error err);
    void statusChanged(AudioManager::Status status);
    /// The end of every stopDecoding(), also where there was nothing to stop: nothing of the source
    /// is used any more.
    void released();

private:
    void stop();
    [[nodiscard]] bool setUpOutput();
    [[nodiscard]] bool openStream();
    void playSilently();
    void closeStream();
    void setStatus(Status status);
    void raise(Error error);
    bool succeeded(int paResult, Error errorOtherwise);

    MediaSource* m_mediaSource = nullptr; // not owned
    AudioOutput m_output;
    std::unique_ptr<AudioDecoder> m_decoder;
    Error m_error = NoError; // set only while it is emitted
    Status m_status = Idle;
    int m_lastPaError = 0; // result of the last PortAudio call but the library's end
};
