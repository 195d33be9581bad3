#include "framerate.h"

#include <array>
#include <cmath>

namespace {

constexpr double fallbackRate = 25.0;
constexpr double tolerance = 0.0002; // of the standard rate
constexpr double ntsc = 1000.0 / 1001.0;

// Film, PAL and NTSC rates with their halves and doubles.
constexpr std::array standardRates{ 10.0, 12.0 * ntsc, 12.0, 12.5, 15.0 * ntsc, 15.0, 24.0 * ntsc,
    24.0, 25.0, 30.0 * ntsc, 30.0, 48.0 * ntsc, 48.0, 50.0, 60.0 * ntsc, 60.0, 90.0, 100.0,
    120.0 * ntsc, 120.0, 144.0, 240.0 * ntsc, 240.0 };

} // namespace

double usableFrameRate(double measured)
{
    if (!std::isfinite(measured) || measured <= 0.0) {
        return fallbackRate;
    }
    for (const double standard : standardRates) {
        if (std::abs(measured - standard) <= standard * tolerance) {
            return standard;
        }
    }
    return measured;
}
