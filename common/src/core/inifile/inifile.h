#pragma once

#include <functional>

class QSettings;
class QString;

/// INI files that are written whole or not at all.
namespace inifile {

/// Has `write` change the file's keys, starting with those it holds, and `holds` look at what was
/// written, read back. False, and the old file stays as it was, where the new one could not be
/// written to the last byte: no room, no permission, or an empty path.
bool replace(const QString& path, const std::function<void(QSettings&)>& write,
    const std::function<bool(const QSettings&)>& holds);

} // namespace inifile
