#pragma once

#include <QString>
#include <QStringList>

/// What a launch asks the player to show, read from the words of its command line: a file, and the
/// first and last frame to stay within.
struct LaunchRequest {
    /// The word that a launch without a file sends to the running player in place of a file.
    static const QString nothing;

    QString file; // empty: nothing to open
    int rangeStart = -1; // -1: not given, or not a number
    int rangeEnd = -1;

    bool operator==(const LaunchRequest&) const = default;

    /// The command line of this process: the program, then at most a file and two frames. A file
    /// that does not exist is taken for a path whose spaces split it: the words are joined again,
    /// and the second and third still count as frames.
    static LaunchRequest fromCommandLine(const QStringList& commandLine);

    /// The words another launch has sent, without the program.
    static LaunchRequest fromMessage(const QStringList& words);

    /// The command line as the running player has to be told it. That player may stand in another
    /// directory, so a file that exists from here is named by its absolute path; all else stays.
    static QStringList commandLineToSend(const QStringList& commandLine);
};
