#include "playbackerrors.h"

#include <QCoreApplication>

#include <array>

namespace {

// By AudioManager::Error, from InitError on.
constexpr std::array audioTexts{
    QT_TRANSLATE_NOOP("PlaybackManager", "Failed to initial audio engine: %1"),
    QT_TRANSLATE_NOOP("PlaybackManager", "No audio devices found"),
    QT_TRANSLATE_NOOP("PlaybackManager", "Failed to open audio stream: %1"),
    QT_TRANSLATE_NOOP("PlaybackManager", "Failed to start audio stream: %1"),
    QT_TRANSLATE_NOOP("PlaybackManager", "Failed to stop audio stream: %1"),
    QT_TRANSLATE_NOOP("PlaybackManager", "Failed to close audio stream: %1"),
    QT_TRANSLATE_NOOP("PlaybackManager", "Failed to cleanup audio engine: %1"),
    QT_TRANSLATE_NOOP("PlaybackManager", "Unsupported audio format"),
};

} // namespace

PlaybackError describe(MediaManager::Error error)
{
    if (error == MediaManager::OpenError) {
        return { PlaybackManager::FormatError,
            PlaybackManager::tr("Failed to open media. Invalid file.") };
    }
    return { PlaybackManager::UnknownError, PlaybackManager::tr("Unknown media error.") };
}

PlaybackError describe(VideoManager::Error error)
{
    if (error == VideoManager::InitError) {
        return { PlaybackManager::ResourceError, PlaybackManager::tr("Failed to initial video") };
    }
    return { PlaybackManager::UnknownError, PlaybackManager::tr("Unknown video error.") };
}

PlaybackError describe(AudioManager::Error error, const QString& detail)
{
    const int row = static_cast<int>(error) - 1;
    if (row < 0 || row >= static_cast<int>(audioTexts.size())) {
        return { PlaybackManager::UnknownError, PlaybackManager::tr("Unknown audio error.") };
    }
    QString text = PlaybackManager::tr(audioTexts[static_cast<size_t>(row)]);
    if (text.contains(QLatin1String("%1"))) {
        text = text.arg(detail);
    }
    return { PlaybackManager::ResourceError, text };
}

QString audioErrorDetail(int number)
{
    return { QChar(static_cast<ushort>(number & 0xff)) };
}
