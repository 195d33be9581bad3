#pragma once

#include <QColor>

namespace timelinecolours {

// clang-format off
inline constexpr QColor track{64, 64, 64};
inline constexpr QColor currentFrame{200, 200, 200};
inline constexpr QColor currentLabel{200, 200, 200};
inline constexpr QColor hover{200, 200, 200, 90}; // the frame under the pointer
inline constexpr QColor range{140, 140, 140};
inline constexpr QColor sideText{140, 140, 140};
inline constexpr QColor handlePen{200, 200, 200};
inline constexpr QColor handleFill{0, 0, 0};
inline constexpr QColor bookmark{200, 200, 200};
inline constexpr QColor rangeBookmark{255, 255, 0, 150};
inline constexpr QColor cache{0, 54, 143, 127};
inline constexpr QColor tick{140, 140, 140}; // the fixed ends of the range timeline's track
// clang-format on

} // namespace timelinecolours
