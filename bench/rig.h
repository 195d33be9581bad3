#pragma once

#include "playbackmanager.h"
#include "softwareviewer.h"

#include <QTimer>

#include <functional>
#include <string>

/// A playback manager and its view, shown, in the hands of somebody who waits for pictures.
class Rig {
public:
    static constexpr int64_t cacheBytes = 512000000; // what the player takes unless told otherwise
    static constexpr float trailingShare = 0.8F;

    Rig();

    /// Asks for a file; nothing is waited for.
    bool open(const std::string& path);

    /// Takes the picture out of the view and asks for a frame, from 1 on, the way the window does.
    void seek(int frame, bool clearCache);

    [[nodiscard]] bool holdsPicture() const { return !m_viewer.pixmap().isNull(); }

    /// True when the picture in the view is that frame, read from the picture itself, which takes
    /// its time.
    [[nodiscard]] bool holds(int frame) const;

    /// Waits for a picture; false when none comes.
    bool awaitPicture();

    /// Waits until frames can be asked for, which the first picture may come before.
    bool awaitReady();

    /// Waits until nothing more is decoded into the cache.
    void awaitFullCache();

    [[nodiscard]] int cachedFrames() const { return m_manager.cachedFrameCount(); }
    [[nodiscard]] int lastFrame() const;

private:
    bool waitUntil(const std::function<bool()>& condition);

    SoftwareViewer m_viewer; // outlives the manager, which shows pictures in it
    PlaybackManager m_manager;
    QTimer m_heartbeat; // so that waiting for events ends even where none come
};
