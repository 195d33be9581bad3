#include "inifile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QSettings>
#include <QTemporaryDir>

namespace {

// The file's new text, empty when it could not be made. QSettings must not write the file itself:
// it does not notice a full disk and then puts a cut file in the place of the good one. What it has
// written is read back first, under another name because it would answer from its memory. The
// drafts lie in a folder made for them at `place`.
QByteArray newText(const QString& place, const QString& path,
    const std::function<void(QSettings&)>& write,
    const std::function<bool(const QSettings&)>& holds)
{
    const QTemporaryDir folder(place + QStringLiteral("/.draft-XXXXXX"));
    if (!folder.isValid()) {
        return QByteArray();
    }
    const QString draft = folder.filePath(QStringLiteral("draft.ini"));
    QFile checked(folder.filePath(QStringLiteral("checked.ini")));
    // Starting from a copy keeps the keys that others have put there.
    if (QFileInfo(path).isFile() && !QFile::copy(path, draft)) {
        return QByteArray();
    }
    {
        QSettings file(draft, QSettings::IniFormat); // writes in its destructor
        write(file);
    }
    if (!QFile::rename(draft, checked.fileName())
        || !holds(QSettings(checked.fileName(), QSettings::IniFormat))
        || !checked.open(QIODevice::ReadOnly)) {
        return QByteArray();
    }
    return checked.readAll();
}

} // namespace

bool inifile::replace(const QString& path, const std::function<void(QSettings&)>& write,
    const std::function<bool(const QSettings&)>& holds)
{
    if (path.isEmpty()) {
        return false;
    }
    QByteArray text = newText(QDir::tempPath(), path, write, holds);
    if (text.isEmpty()) { // the disk of temporary files may be full, or closed to this user
        text = newText(QFileInfo(path).absolutePath(), path, write, holds);
    }
    QSaveFile file(path); // unless committed, the old file stays
    // Flushed by hand, because committing does not look at what its own flush says.
    return !text.isEmpty() && file.open(QIODevice::WriteOnly) && file.write(text) == text.size()
        && file.flush() && file.commit();
}
