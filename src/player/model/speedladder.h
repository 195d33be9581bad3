#pragma once

/// The playback speeds that a person steps through, as multiples of normal speed.
namespace speedladder {

constexpr double slowest = 0.1;
constexpr double fastest = 4.0;

/// The nearest speed that is allowed; a value that is no number counts as normal speed.
double clamped(double multiplier);

/// The next step, the fastest and the slowest being the last ones. From 2.0 it goes straight to
/// 4.0 and back.
double increased(double multiplier);
double decreased(double multiplier);

} // namespace speedladder
