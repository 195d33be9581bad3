#include "speedladder.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

// Two thirds and one third are these decimals on purpose: the speed shown is the speed played.
constexpr std::array steps{ 0.1, 0.25, 0.333, 0.5, 0.667, 0.75, 1.0, 1.5, 2.0, 4.0 };

} // namespace

double speedladder::clamped(double multiplier)
{
    return std::isnan(multiplier) ? 1.0 : std::clamp(multiplier, slowest, fastest);
}

double speedladder::increased(double multiplier)
{
    const auto* next = std::upper_bound(steps.begin(), steps.end(), multiplier);
    return next != steps.end() ? *next : fastest;
}

double speedladder::decreased(double multiplier)
{
    const auto* next = std::lower_bound(steps.begin(), steps.end(), multiplier);
    return next != steps.begin() ? *(next - 1) : slowest;
}
