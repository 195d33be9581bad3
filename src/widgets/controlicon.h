#pragma once

#include <QIcon>

/// Icon for a small button, from a resource in light grey. The toolkit's own disabled look is
/// hardly darker than the enabled one on a dark window, so this icon brings a faded one.
QIcon controlIcon(const QString& resource);
