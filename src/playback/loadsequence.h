#pragma once

#include "audiomanager.h"
#include "mediamanager.h"
#include "videomanager.h"

/// The last status heard from each engine object.
struct EngineStatus {
    MediaManager::Status media;
    AudioManager::Status audio;
    VideoManager::Status video;
    bool soundFailed = false; // the output did not start: sound is decoded, but nobody takes it

    /// Sound that the file has is played, or never will be.
    [[nodiscard]] bool soundBegun() const;
    /// The decoders have not begun, or have let go.
    [[nodiscard]] bool decodersIdle() const;
    /// Sound and pictures are there, as far as the file has them, at the play head.
    [[nodiscard]] bool readyAtPlayHead() const;
};

/// What a file that is loading is to do next.
enum class LoadStep { Wait, StartDecoders, Complete, NoStreams };

LoadStep nextLoadStep(const EngineStatus& engine);
