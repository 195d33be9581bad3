#include "recentlist.h"

#include <algorithm>

void recentlist::add(QStringList& list, const QString& path, int limit)
{
    list.removeOne(path);
    list.prepend(path);
    trim(list, limit);
}

void recentlist::trim(QStringList& list, int limit)
{
    while (list.size() > std::max(limit, 0)) {
        list.removeLast();
    }
}
