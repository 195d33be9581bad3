#pragma once

#include "audiomanager.h"
#include "mediamanager.h"
#include "playbackmanager.h"
#include "videomanager.h"

#include <QString>

/// An engine error in the playback manager's terms, with the text a person reads.
struct PlaybackError {
    PlaybackManager::Error code = PlaybackManager::NoError;
    QString text;
};

PlaybackError describe(MediaManager::Error error);
PlaybackError describe(VideoManager::Error error);

/// `detail` fills the place of the sound library's error number.
PlaybackError describe(AudioManager::Error error, const QString& detail);

/// The detail for the sound library's error `number`: one character whose code is the number's low
/// 8 bits.
QString audioErrorDetail(int number);
