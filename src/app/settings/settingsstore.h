#pragma once

#include <QString>

// The per-user directory and the settings file in it. Nothing here reports an error: what cannot be
// read has its default, what cannot be written stays as it was. GUI thread.

inline constexpr char userDirectoryName[] = ".quillon"; // in the home directory
inline constexpr char settingsFileName[] = "vantor.ini";
inline constexpr char bookmarksFolderName[] = "bookmarks";
inline constexpr char bookmarksExtension[] = "bmk";

/// Absolute path of the per-user directory, which is made when missing; empty when it cannot be
/// made.
QString userDirectory();

/// Absolute path of the default folder for bookmarks files, made when missing; empty without a
/// per-user directory.
QString bookmarksDirectory();

/// Empty without a per-user directory.
QString settingsFilePath();

/// Fills settings() from the file, with defaults for what it does not say, and validates.
void loadSettings();

/// Repairs the values of settings() that would do harm. Volume and trailing share are taken as they
/// are.
void validateSettings();

/// Writes settings() to the file. The old file is replaced by a complete new one or stays as it is;
/// false for that.
[[nodiscard]] bool saveSettings();
