#pragma once

/// Frames per second as the player counts them. A measured rate within 0.02 % of a standard one is
/// that standard one: a rate that is slightly off leaves the grid of frame starts after some
/// minutes. Where there is no finite positive rate (sound only, a cover picture) it is 25.
double usableFrameRate(double measured);
