#pragma once

#include "benchmarks.h"
#include "contestant.h"

/// A clip as a player shows it. Where its pictures repeat they tell a frame only within that.
struct Film {
    const char* clip;
    int width; // pixels
    int frames;
    int repetition; // frames
    double rate; // frames per second

    [[nodiscard]] int code(int frame) const { return (frame - 1) % repetition + 1; }
};

constexpr Film smallFilm{ "h264-360p", 640, 1000, 1000, 25.0 };
constexpr Film ordinaryFilm{ "h264-1080p", 1920, 300, 300, 25.0 };
constexpr Film largeFilm{ "h264-2160p", 3840, 100, 100, 25.0 };
constexpr Film longFilm{ "long-1080p", 1920, 15000, 1500, 25.0 };
constexpr Film fastFilm{ "h264-1080p60", 1920, 660, 660, 60.0 };
constexpr Film cinemaFilm{ "h264-2160p24", 3840, 264, 264, 24.0 };

/// Starts the player on the film and gives it the keyboard; false where no picture comes.
inline bool startOn(Contestant& player, const Film& film)
{
    player.launch(clipPath(film.clip), film.width);
    const bool shown = player.secondsTo(1) >= 0.0;
    player.takeKeyboard();
    return shown;
}
