#pragma once

#include <QStringList>

/// Lists of recent files, newest first. A negative limit counts as 0.
namespace recentlist {

/// Puts `path` first, once, and drops the oldest beyond `limit`.
void add(QStringList& list, const QString& path, int limit);

/// Drops the oldest beyond `limit`.
void trim(QStringList& list, int limit);

} // namespace recentlist
