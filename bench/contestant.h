#pragma once

#include <QProcess>
#include <QRect>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>
#include <string>

/// A player in a process of its own, driven by real keys and judged by what is on the display:
/// Vantor's program or one to compare it with. Both show the picture in the same place and size,
/// and both start paused on the first one.
class Contestant {
public:
    static constexpr double never = -1.0;
    /// Where the picture is on the display, in pixels; of 16 by 9. To the pixel: at 2160p the
    /// codes' cells are less than three pixels wide there.
    static constexpr QRect onDisplay{ 20, 0, 920, 518 };

    virtual ~Contestant();
    Contestant(const Contestant&) = delete;
    Contestant& operator=(const Contestant&) = delete;

    [[nodiscard]] virtual const char* name() const = 0;

    /// Starts the program on a file of `width` pixels. Nothing is waited for.
    void launch(const std::string& path, int width);
    /// Gives the keyboard to the window that shows the picture.
    void takeKeyboard() const;
    /// Another file for the running program. Nothing is waited for.
    virtual void open(const std::string& path) = 0;
    /// Asks for a frame, from 1 on, at the file's rate in frames per second.
    virtual void jump(int frame, double rate) = 0;
    virtual void stepForward() = 0;
    virtual void stepBackward() = 0;
    virtual void togglePlaying() = 0;

    /// Number of the picture on the display, -1 while there is none.
    [[nodiscard]] int frameOnShow() const;
    /// Waits for that picture; seconds since `now`, or `never` where it does not come in time.
    [[nodiscard]] double secondsTo(int frame) const;
    /// Waits for any picture of a lower number than that, for so many seconds; its number, -1 where
    /// none comes.
    [[nodiscard]] int awaitBefore(int frame, double limitSeconds) const;
    /// Waits until the same picture has been on show for a while.
    int awaitRest() const;

    /// Of the process, with all its threads.
    [[nodiscard]] double processorSeconds() const;
    [[nodiscard]] double residentBytes() const;

protected:
    Contestant();
    [[nodiscard]] virtual QString program() const = 0;
    [[nodiscard]] virtual QStringList arguments() const = 0;
    [[nodiscard]] QString path(const char* name) const { return m_folder.filePath(name); }
    void press(const char* keysym) const;
    void end();

    const QTemporaryDir m_folder; // home and temporary files of the process

private:
    QProcess m_process;
    double m_scale = 1.0; // of the picture on the display
};

std::unique_ptr<Contestant> makeVantor();
/// The general player that is the yardstick.
std::unique_ptr<Contestant> makeMpv();
