#include "loadsequence.h"

bool EngineStatus::decodersIdle() const
{
    return audio == AudioManager::Idle && video == VideoManager::Idle;
}

bool EngineStatus::soundBegun() const
{
    return audio == AudioManager::Streaming || (audio == AudioManager::Decoding && soundFailed);
}

bool EngineStatus::readyAtPlayHead() const
{
    const bool pictures = video >= VideoManager::Ready;
    return (audio == AudioManager::NoAudio && pictures)
        || (soundBegun() && (pictures || video == VideoManager::NoVideo));
}

LoadStep nextLoadStep(const EngineStatus& engine)
{
    if (engine.media == MediaManager::Loaded && engine.decodersIdle()) {
        return LoadStep::StartDecoders;
    }
    const bool pictures = engine.video == VideoManager::Ready;
    const bool noPictures = engine.video == VideoManager::NoVideo;
    if ((engine.audio == AudioManager::NoAudio && pictures)
        || (engine.soundBegun() && (pictures || noPictures))) {
        return LoadStep::Complete;
    }
    return engine.audio == AudioManager::NoAudio && noPictures ? LoadStep::NoStreams
                                                               : LoadStep::Wait;
}
