#pragma once

#include <QList>
#include <QStringList>

class QAction;
class QMenu;

/// Submenus of recent files, newest first.
namespace recentmenu {

/// Fills `menu` anew with an entry for each of the first `limit` files, whose data is the path.
QList<QAction*> fill(QMenu& menu, const QStringList& files, int limit);

} // namespace recentmenu
