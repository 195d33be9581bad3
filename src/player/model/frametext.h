#pragma once

#include <QString>

/// How frames are written for the user. The values are those stored in the settings.
enum class DISPLAY_TYPE { FrameNumbers = 0, Seconds = 1, TimeCode = 2 };

/// `frame`, counted from 1, at `frameRate` frames per second: its number, the seconds to its start
/// with two decimals, or [hours:]minutes:seconds:frames. Empty unless the rate is above 0.
[[nodiscard]] QString frameText(int frame, double frameRate, DISPLAY_TYPE type);
