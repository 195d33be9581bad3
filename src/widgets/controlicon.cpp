#include "controlicon.h"

#include <QPainter>
#include <QPixmap>

namespace {

constexpr qreal disabledOpacity = 0.35;

QPixmap faded(const QPixmap& normal)
{
    QPixmap result(normal.size());
    result.setDevicePixelRatio(normal.devicePixelRatio()); // 2 for a picture named "@2x"
    result.fill(Qt::transparent);
    QPainter painter(&result);
    painter.setOpacity(disabledOpacity);
    painter.drawPixmap(0, 0, normal);
    return result;
}

} // namespace

QIcon controlIcon(const QString& resource)
{
    QIcon icon(resource);
    icon.addPixmap(QPixmap(resource + QLatin1String("@1.5x"))); // Qt finds those of whole factors
    for (const char* variant : { "", "@1.5x", "@2x" }) {
        const QPixmap normal(resource + QLatin1String(variant));
        if (!normal.isNull()) {
            icon.addPixmap(faded(normal), QIcon::Disabled);
        }
    }
    return icon;
}
