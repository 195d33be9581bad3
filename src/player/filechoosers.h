#pragma once

#include <QString>
#include <QStringList>

class QWidget;

/// The dialogs that ask for a file. Each remembers for the life of the process where the last file
/// was chosen; an empty answer means that nothing was chosen.
namespace filechoosers {

/// A media file to open. It starts beside the newest recent file, or at home.
QString mediaToOpen(QWidget* parent, const QStringList& recentFiles);

/// A bookmarks file to open. It starts beside the newest recent one, or in the folder for them.
QString bookmarksToOpen(QWidget* parent, const QStringList& recentFiles);

/// Where to save bookmarks.
QString bookmarksDestination(QWidget* parent);

/// Where to copy `media` to.
QString copyDestination(QWidget* parent, const QString& media);

} // namespace filechoosers
