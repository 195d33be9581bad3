#pragma once

#include <QString>

// The media libraries the program runs with, which may be newer than those it was built against.

QString ffmpegVersion();
QString portAudioVersion();
