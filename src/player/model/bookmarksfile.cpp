#include "bookmarksfile.h"

#include "bookmarks.h"
#include "inifile.h"

#include <QFileInfo>
#include <QSettings>

#include <optional>

namespace {

const auto mediaPathKey = QStringLiteral("main/mediaPath");
const auto framesKey = QStringLiteral("main/frames");
const auto rangesKey = QStringLiteral("main/ranges");
const auto startKey = QStringLiteral("main/start");
const auto endKey = QStringLiteral("main/end");
constexpr QChar separator = u',';

// Commas that nobody has quoted make a list of a text.
QString textOf(const QVariant& value)
{
    return value.toStringList().join(separator);
}

QString framesText(const Bookmarks& bookmarks)
{
    QString text;
    for (const int frame : bookmarks.frames()) {
        text += QString::number(frame) + separator;
    }
    return text;
}

QStringList rangeTexts(const Bookmarks& bookmarks)
{
    QStringList texts;
    for (const RangeBookmark& range : bookmarks.ranges()) {
        texts.append(QString::number(range.start) + separator + QString::number(range.end)
            + separator + range.name);
    }
    return texts;
}

std::optional<RangeBookmark> parseRange(const QString& text)
{
    const QStringList parts = text.split(separator, Qt::SkipEmptyParts);
    if (parts.size() < 3) {
        return std::nullopt;
    }
    bool isStart = false;
    bool isEnd = false;
    const int start = parts[0].toInt(&isStart);
    const int end = parts[1].toInt(&isEnd);
    if (!isStart || !isEnd) {
        return std::nullopt;
    }
    return RangeBookmark{ start, end, parts.mid(2).join(separator) };
}

QList<RangeBookmark> parseRanges(const QStringList& texts)
{
    QList<RangeBookmark> ranges;
    for (const QString& text : texts) {
        if (const auto range = parseRange(text)) {
            ranges.append(*range);
        }
    }
    return ranges;
}

// A number that no int can hold is none; a variant's own conversion would cut it.
int frameOf(const QString& text)
{
    bool isNumber = false;
    const int frame = text.toInt(&isNumber);
    return isNumber ? frame : Bookmarks::noFrame;
}

} // namespace

void bookmarksfile::read(Bookmarks& bookmarks, const QString& path)
{
    bookmarks.clear();
    const QFileInfo info(path);
    if (!info.isFile()) { // a pipe would hold the window
        return;
    }
    QSettings file(info.absoluteFilePath(), QSettings::IniFormat);
    file.setIniCodec("UTF-8"); // what people write; the toolkit's own escapes are plain ASCII
    bookmarks.mediaPath = textOf(file.value(mediaPathKey));
    const QStringList frames = textOf(file.value(framesKey)).split(separator, Qt::SkipEmptyParts);
    for (const QString& text : frames) {
        bookmarks.addFrame(frameOf(text));
    }
    bookmarks.setRanges(parseRanges(file.value(rangesKey).toStringList()));
    bookmarks.setCurrentRange(
        frameOf(file.value(startKey).toString()), frameOf(file.value(endKey).toString()));
}

bool bookmarksfile::write(const Bookmarks& bookmarks, const QString& path)
{
    const QString frames = framesText(bookmarks);
    const QStringList ranges = rangeTexts(bookmarks);
    const auto writeKeys = [&](QSettings& file) {
        file.setValue(mediaPathKey, bookmarks.mediaPath);
        file.setValue(framesKey, frames);
        file.setValue(rangesKey, ranges);
        file.setValue(startKey, bookmarks.currentRangeStart());
        file.setValue(endKey, bookmarks.currentRangeEnd());
    };
    const auto holdsKeys = [&](const QSettings& file) {
        return file.value(mediaPathKey).toString() == bookmarks.mediaPath
            && file.value(framesKey).toString() == frames
            && file.value(rangesKey).toStringList() == ranges
            && file.value(startKey).toInt() == bookmarks.currentRangeStart()
            && file.value(endKey).toInt() == bookmarks.currentRangeEnd();
    };
    return inifile::replace(path, writeKeys, holdsKeys);
}
