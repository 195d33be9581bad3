#pragma once

#include "drivenplayer.h"

/// Does and checks, word by word, what the script says, and fails the test where the program does
/// otherwise. Keys are pressed once, or so many times ("Right*20"), and go to the window named last
/// ("@Preferences", "@" for the player's own); "close" closes the player and "again" starts it.
///
/// "T20" and "R20" move the pointer to a frame on the timeline or the range timeline, "T20^" to
/// above it, "video" to the picture, "menus" to the first menu, "by25" to the right; "down" and
/// "up" are its button.
///
/// "=20" is to be on show everywhere then, "#20" only in the title, and of "muted:true" and its
/// like the left names what is to become the right:
///
///     saved/...     a key of the bookmarks file, saved anew for it
///     group/...     a key of the settings file
///     speed, plays, turn
///     cached        whether the first frame of the range is
///     height        of the view of the video
///     snapshot      the frame on the clipboard's picture
void follow(DrivenPlayer& player, const Scene& scene, const QString& script);

/// The bookmarks file of scripts, which the player is to be started with.
QString bookmarksFile(const DrivenPlayer& player);
