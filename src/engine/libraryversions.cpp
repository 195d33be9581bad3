#include "libraryversions.h"

#include <portaudio.h>

extern "C" {
#include <libavutil/avutil.h>
}

QString ffmpegVersion()
{
    return QString::fromUtf8(av_version_info());
}

QString portAudioVersion()
{
    const PaVersionInfo* const version = Pa_GetVersionInfo();
    return QStringLiteral("%1.%2.%3")
        .arg(version->versionMajor)
        .arg(version->versionMinor)
        .arg(version->versionSubMinor);
}
