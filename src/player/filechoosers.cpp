#include "filechoosers.h"

#include "settingsstore.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>

namespace {

constexpr char videoPatterns[] = "*.avi *.f4v *.flv *.m4v *.mkv *.mov *.mp4 *.mpeg *.mpeg4 *.mpg "
                                 "*.webm *.wmv";

QString tr(const char* text)
{
    return QCoreApplication::translate("filechoosers", text);
}

QString directoryOfNewest(const QStringList& recentFiles, const QString& otherwise)
{
    const QFileInfo newest(recentFiles.value(0));
    return !recentFiles.isEmpty() && newest.exists() ? newest.absolutePath() : otherwise;
}

// `directory` is where the dialog was left the last time.
QString chooseToOpen(QWidget* parent, const QString& title, QString& directory,
    const QString& filters, QString selectedFilter)
{
    QString file = QFileDialog::getOpenFileName(parent, title, directory, filters, &selectedFilter);
    if (!file.isEmpty()) {
        directory = QFileInfo(file).absolutePath();
    }
    return file;
}

} // namespace

QString filechoosers::mediaToOpen(QWidget* parent, const QStringList& recentFiles)
{
    static QString directory;
    if (directory.isEmpty()) {
        directory = directoryOfNewest(recentFiles, QDir::homePath());
    }
    const QString patterns = QString::fromLatin1(videoPatterns);
    return chooseToOpen(parent, tr("Open File"), directory,
        tr("All Files (*.*);;Video Files (%1)").arg(patterns),
        tr("Video Files (%1)").arg(patterns));
}

QString filechoosers::bookmarksToOpen(QWidget* parent, const QStringList& recentFiles)
{
    static QString directory;
    if (directory.isEmpty()) {
        directory = directoryOfNewest(recentFiles, bookmarksDirectory());
    }
    const QString extension = QString::fromLatin1(bookmarksExtension);
    return chooseToOpen(parent, tr("Open Bookmarks"), directory,
        tr("All Files (*.*);;Bookmarks Files (*.%1)").arg(extension),
        tr("Bookmarks Files (*.%1)").arg(extension));
}

QString filechoosers::bookmarksDestination(QWidget* parent)
{
    const QString extension = QString::fromLatin1(bookmarksExtension);
    QString selected = tr("Bookmarks Files (*.%1)").arg(extension);
    return QFileDialog::getSaveFileName(parent, tr("Save Bookmarks"), bookmarksDirectory(),
        tr("All Files (*.*);;Bookmarks Files (*.%1)").arg(extension), &selected);
}

QString filechoosers::copyDestination(QWidget* parent, const QString& media)
{
    const QFileInfo file(media);
    QString selected = tr("Current Media (*.%1)").arg(file.suffix());
    return QFileDialog::getSaveFileName(parent, tr("Copy Current Media"), file.absoluteFilePath(),
        tr("All Files (*.*);;Current Media (*.%1)").arg(file.suffix()), &selected);
}
