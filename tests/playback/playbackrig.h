#pragma once

#include "playbackmanager.h"
#include "softwareviewer.h"

/// A playback manager with a view, driven the way the window drives it. Pictures are asked which
/// frame they are.
class PlaybackRig {
public:
    PlaybackRig() { manager.setViewer(&viewer); }

    /// Asks for a file, by the name of a clip or its path, without waiting for it.
    bool request(const QString& name);

    /// Opens a file and waits until it is ready.
    bool open(const QString& name);

    /// Asks for a frame, from 1 on, the way the window does.
    void goTo(int frame, bool clearCache = false,
        PlaybackManager::Reach reach = PlaybackManager::Reach::Target);

    /// The frame on show, -1 where the view shows none.
    [[nodiscard]] int shown() const;

    /// Waits until the manager is ready and shows `frame`; the frame on show at the end, whatever
    /// it is.
    int settledOn(int frame);

    /// Goes there and settles.
    int visit(int frame, bool clearCache = false);

    bool waitFor(PlaybackManager::Status status);
    bool waitForState(PlaybackManager::State state);

    SoftwareViewer viewer;
    PlaybackManager manager;
};

/// Makes a file of the streams of two others, by the ffmpeg program; false where it fails.
bool joinStreams(const QString& first, const QString& second, const QString& optionsAndPath);
