#include "filechoosers.h"

#include "settingsstore.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>

namespace {

constexpr char videoPatterns[] = "*.avi *.f4v *.flv *.m4v *.mkv *.mov *.mp4 *.mpeg *.mpeg4 *.mpg "
                                 "*.webm *.wmv";

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(filechoosers)
};

// All files, or those of one kind, which are selected.
QString filtersWith(const QString& kind)
{
    return Texts::tr("All Files (*.*)") + QLatin1String(";;") + kind;
}

QString bookmarksFilter()
{
    return Texts::tr("Bookmarks Files (*.%1)").arg(QLatin1String(bookmarksExtension));
}

QString directoryOfNewest(const QStringList& recentFiles, const QString& otherwise)
{
    const QFileInfo newest(recentFiles.value(0));
    return !recentFiles.isEmpty() && newest.exists() ? newest.absolutePath() : otherwise;
}

// `directory` is where the dialog was left the last time.
QString chooseToOpen(QWidget* parent, const QString& title, QString& directory, QString filter)
{
    QString file =
        QFileDialog::getOpenFileName(parent, title, directory, filtersWith(filter), &filter);
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
    return chooseToOpen(parent, Texts::tr("Open File"), directory,
        Texts::tr("Video Files (%1)").arg(QLatin1String(videoPatterns)));
}

QString filechoosers::bookmarksToOpen(QWidget* parent, const QStringList& recentFiles)
{
    static QString directory;
    if (directory.isEmpty()) {
        directory = directoryOfNewest(recentFiles, bookmarksDirectory());
    }
    return chooseToOpen(parent, Texts::tr("Open Bookmarks"), directory, bookmarksFilter());
}

QString filechoosers::bookmarksDestination(QWidget* parent)
{
    QString filter = bookmarksFilter();
    return QFileDialog::getSaveFileName(
        parent, Texts::tr("Save Bookmarks"), bookmarksDirectory(), filtersWith(filter), &filter);
}

QString filechoosers::copyDestination(QWidget* parent, const QString& media)
{
    const QFileInfo file(media);
    QString filter = Texts::tr("Current Media (*.%1)").arg(file.suffix());
    return QFileDialog::getSaveFileName(parent, Texts::tr("Copy Current Media"),
        file.absoluteFilePath(), filtersWith(filter), &filter);
}
