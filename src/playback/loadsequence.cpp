#include "loadsequence.h"

bool EngineStatus::decodersIdle() const
{
    return audio == AudioManager::Idle && video == VideoManager::Idle;
}

bool EngineStatus::readyAtPlayHead() const
{
    const bool pictures = video >= VideoManager::Ready;
    return (audio == AudioManager::NoAudio && pictures)
        || (audio == AudioManager::Streaming && (pictures || video == VideoManager::NoVideo));
}

LoadStep nextLoadStep(const EngineStatus& engine)
{
    if (engine.media == MediaManager::Loaded && engine.decodersIdle()) {
        return LoadStep::StartDecoders;
    }
    const bool pictures = engine.video == VideoManager::Ready;
    const bool noPictures = engine.video == VideoManager::NoVideo;
    if ((engine.audio == AudioManager::NoAudio && pictures)
        || (engine.audio == AudioManager::Streaming && (pictures || noPictures))) {
        return LoadStep::Complete;
    }
    return engine.audio == AudioManager::NoAudio && noPictures ? LoadStep::NoStreams
                                                               : LoadStep::Wait;
}
