#include "recentmenu.h"

#include <QAction>
#include <QMenu>

QList<QAction*> recentmenu::fill(QMenu& menu, const QStringList& files, int limit)
{
    menu.clear();
    QList<QAction*> entries;
    for (const QString& file : files.mid(0, qMax(limit, 0))) {
        QString text = file;
        text.replace(QLatin1Char('&'), QLatin1String("&&")); // it would underline the next letter
        entries.append(menu.addAction(text));
        entries.last()->setData(file);
    }
    return entries;
}
