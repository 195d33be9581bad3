#include "audiomanager.h"

#include "audiodecoder.h"
#include "logger.h"
#include "mediasource.h"

extern "C" {
#include <libavcodec/avcodec.h>
}
#include <portaudio.h>

#include <algorithm>

namespace {

constexpr int prefillSteps = 10; // decoded before the output starts, so that it does not start dry

bool hasAudioStream(const MediaSource& source)
{
    return source.audioStreamCount > 0 && source.audioStream && source.audioCodec;
}

} // namespace

AudioManager::AudioManager(QObject* parent)
    : QObject(parent)
{
    qRegisterMetaType<AudioManager::Error>("AudioManager::Error");
    qRegisterMetaType<AudioManager::Status>("AudioManager::Status");
}

AudioManager::~AudioManager()
{
    stop();
}

void AudioManager::prepareOutput()
{
    if (m_mediaSource) {
        return;
    }
    // Afresh for every file, so that a device plugged in meanwhile is found.
    (void)m_output.terminate();
    m_lastPaError = m_output.initialize();
}

void AudioManager::changeMediaSource(MediaSource* mediaSource)
{
    if (!mediaSource || mediaSource->abortRequested) {
        stop();
        return;
    }
    if (m_mediaSource) {
        stop();
    }
    m_mediaSource = mediaSource;
    if (!hasAudioStream(*mediaSource)) {
        setStatus(NoAudio);
        return;
    }
    if (!setUpOutput()) {
        playSilently();
        return;
    }
    m_decoder = std::make_unique<AudioDecoder>(*mediaSource);
    for (int step = 0; step < prefillSteps && m_decoder->decodeNext() >= 0; ++step) { }
    setStatus(Decoding);
    beginWritingStream();
    if (!m_output.isOpen()) { // the sound system does not answer
        playSilently();
        return;
    }
    startDecoding();
}

void AudioManager::playSilently()
{
    m_mediaSource->soundUnused.store(true, std::memory_order_release);
    setStatus(NoAudio);
}

bool AudioManager::setUpOutput()
{
    if (m_mediaSource->audioCodec->sample_fmt == AV_SAMPLE_FMT_DBL) {
        raise(UnsupportedFormatError);
        return false;
    }
    if (m_mediaSource->sampleRate < 1 || m_mediaSource->channels < 1) {
        Logger::displayWarning(QStringLiteral("The audio stream names no rate or no channels."));
        return false;
    }
    if (!m_output.isInitialized() && !succeeded(m_output.initialize(), InitError)) {
        return false;
    }
    return openStream();
}

bool AudioManager::openStream()
{
    const auto device = AudioOutput::defaultDevice();
    if (!device) {
        raise(NoDeviceError);
        return false;
    }
    m_mediaSource->outputChannels = std::min(m_mediaSource->channels, device->maxChannels);
    return succeeded(m_output.open(*device, *m_mediaSource), OpenStreamError);
}

void AudioManager::beginWritingStream()
{
    if (!m_output.isOpen()) {
        raise(StartStreamError);
        return;
    }
    if (succeeded(m_output.start(), StartStreamError)) {
        setStatus(Streaming);
    }
}

void AudioManager::endWritingStream()
{
    if (m_output.isOpen()) {
        closeStream();
        setStatus(StreamClosed);
    }
}

void AudioManager::closeStream()
{
    succeeded(m_output.close(), CloseStreamError);
}

void AudioManager::startDecoding()
{
    if (m_status < Decoding) {
        return;
    }
    while (!m_mediaSource->abortRequested) {
        (void)m_decoder->decodeNext();
    }
}

void AudioManager::stopDecoding()
{
    stop();
    Q_EMIT released();
}

void AudioManager::stop()
{
    if (m_output.isOpen()) {
        closeStream(); // stops it too
    }
    if (m_output.isInitialized() && m_output.terminate() != paNoError) {
        if (m_mediaSource) {
            m_mediaSource->audioErrorCode = m_lastPaError;
        }
        raise(TerminateError);
    }
    m_decoder.reset();
    if (m_mediaSource) {
        m_mediaSource->audioFrames.clear();
        m_mediaSource = nullptr;
    }
    setStatus(Idle);
    m_error = NoError;
}

void AudioManager::setStatus(Status status)
{
    if (m_status != status) {
        m_status = status;
        Q_EMIT statusChanged(status);
    }
}

void AudioManager::raise(Error newError)
{
    if (m_error != newError) {
        m_error = newError;
        Q_EMIT error(newError);
    }
    m_error = NoError;
}

/// Keeps the result of a PortAudio call; a failure is logged in the library's words and raised.
bool AudioManager::succeeded(int paResult, Error errorOtherwise)
{
    m_lastPaError = paResult;
    if (paResult == paNoError) {
        return true;
    }
    const QString reason = paResult == paTimedOut
        ? QStringLiteral("the sound system does not answer; a film opened once it does has sound")
        : QString::fromUtf8(Pa_GetErrorText(paResult));
    Logger::displayWarning(QStringLiteral("Sound output: %1").arg(reason));
    if (m_mediaSource) {
        m_mediaSource->audioErrorCode = paResult;
    }
    raise(errorOtherwise);
    return false;
}
