#pragma once

#include "clips.h"

#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QVariant>

/// What the window is to show: a clip, and the range of frames to stay within.
struct Scene {
    Clip clip;
    int first = 1; // frames from 1 on, both ends included
    int last = clip.frameCount;

    [[nodiscard]] QStringList arguments() const;
    /// How DrivenPlayer words that this frame is on show everywhere.
    [[nodiscard]] QString sightOf(int frame) const;
};

/// A port of this machine that nobody listens at.
int freePort();

/// The built program, or the one that VANTOR_PROGRAM in the environment names, in a process with a
/// home and a temporary folder of its own, so that it meets no other player; driven by real keys
/// and the pointer, judged by what is on the display. Needs no window manager.
class DrivenPlayer {
public:
    /// Settings are named "group/key". Both timelines are shown at their first places, and the
    /// window keeps its size whatever the video's.
    explicit DrivenPlayer(const QVariantMap& settings = {});
    ~DrivenPlayer();
    Q_DISABLE_COPY(DrivenPlayer)

    /// A second name for the clip, in a folder of this player's own.
    [[nodiscard]] Clip linked(const Clip& clip, const QString& name) const;
    /// A file's path in that folder.
    [[nodiscard]] QString path(const QString& name) const { return m_folder.filePath(name); }
    /// Has the program started by this command, which is to become it, from now on.
    void wrap(const QStringList& command) { m_wrapper = command; }
    /// Gives the window the keyboard; false where none comes.
    bool start(const QStringList& arguments);
    /// Gives the keyboard to the window of a title, without one to the player's own.
    bool focus(const QString& title = {});
    /// One more launch, from the folder of linked clips; its exit code, -1 where it does not end.
    int launchAgain(const QStringList& arguments) const;
    [[nodiscard]] qint64 processId() const { return m_process.processId(); } // 0 without one
    /// Closes the window as its title bar's button does; true where the program then ends well.
    bool close();
    [[nodiscard]] QVariant setting(const QString& key) const; // as the file has it

    [[nodiscard]] QString title() const;
    [[nodiscard]] int frame() const; // in the title, -1 without one
    /// Waits until the frame in the title stands still; that frame.
    [[nodiscard]] int awaitRest() const;
    /// Waits until title, picture and timelines show the frame; what they show at the end.
    [[nodiscard]] QString awaitSight(const Scene& scene, int frame) const;
    [[nodiscard]] QImage console() const; // null while it is hidden
    [[nodiscard]] QString consoleText(); // after its first line; empty where it does not come up
    /// What can be copied out of the window of a title, which has the keyboard then.
    [[nodiscard]] QString textOf(const QString& title);
    [[nodiscard]] QImage view() const; // the video's, between the two timelines
    [[nodiscard]] int picture(const Clip& clip) const; // the number it shows, -1 without one
    /// Degrees by which the picture is turned clockwise, behind "mirrored" where it is that first.
    [[nodiscard]] QString turn(const Clip& clip) const;
    [[nodiscard]] bool isCached(const Scene& scene, int frame) const; // on the range timeline

    /// Presses a key, the name of an X keysym after those of its modifiers ("Control+Shift+p"), as
    /// fast as a keyboard repeats one that is held down.
    void hold(const QString& key, int times = 1);
    /// Moves the pointer to a frame's place on a timeline, or above it, where there is nothing.
    void point(bool rangeTimeline, const Scene& scene, int frame, bool above = false);
    void pointAtVideo();
    void pointAtMenus(); // the first one
    void movePointer(int pixels); // to the right, at once
    void holdButton(bool down); // the left one
    void resize(int width, int height); // of the window, in pixels

private:
    void pointAt(QPoint place); // in the window
    [[nodiscard]] unsigned long window(const char* titles) const; // a pattern; 0 for none
    [[nodiscard]] QString sight(const Scene& scene) const;

    const QTemporaryDir m_folder;
    const QString m_settingsPath = m_folder.filePath(".quillon/vantor.ini");
    QStringList m_wrapper;
    QProcess m_process;
    unsigned long m_window = 0;
};

Q_DECLARE_METATYPE(Scene)

/// The frame comes to be on show in the title, in the picture and on both timelines.
#define SHOWS(player, scene, frame)                                                                \
    QCOMPARE((player).awaitSight(scene, frame), (scene).sightOf(frame))
