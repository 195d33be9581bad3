#include "filechoosers.h"

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

QString directoryOfNewest(const QStringList& recentFiles)
{
    const QFileInfo newest(recentFiles.value(0));
    return !recentFiles.isEmpty() && newest.exists() ? newest.absolutePath() : QDir::homePath();
}

} // namespace

QString filechoosers::mediaToOpen(QWidget* parent, const QStringList& recentFiles)
{
    static QString directory;
    if (directory.isEmpty()) {
        directory = directoryOfNewest(recentFiles);
    }
    const QString patterns = QString::fromLatin1(videoPatterns);
    QString selected = tr("Video Files (%1)").arg(patterns);
    const QString file = QFileDialog::getOpenFileName(parent, tr("Open File"), directory,
        tr("All Files (*.*);;Video Files (%1)").arg(patterns), &selected);
    if (!file.isEmpty()) {
        directory = QFileInfo(file).absolutePath();
    }
    return file;
}

QString filechoosers::copyDestination(QWidget* parent, const QString& media)
{
    const QFileInfo file(media);
    QString selected = tr("Current Media (*.%1)").arg(file.suffix());
    return QFileDialog::getSaveFileName(parent, tr("Copy Current Media"), file.absoluteFilePath(),
        tr("All Files (*.*);;Current Media (*.%1)").arg(file.suffix()), &selected);
}
