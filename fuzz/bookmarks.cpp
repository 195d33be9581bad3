// A bookmarks file: people send them to each other.
#include "bookmarks.h"

#include "bookmarksfile.h"
#include "check.h"

#include <QFile>
#include <QTemporaryDir>

#include <algorithm>

namespace {

void checkOrder(const Bookmarks& bookmarks)
{
    const QList<RangeBookmark>& ranges = bookmarks.ranges();
    const auto isInOrder = [](const RangeBookmark& left, const RangeBookmark& right) {
        return left.start < right.start || (left.start == right.start && left.end < right.end);
    };
    const auto notInOrder = [&](const RangeBookmark& left, const RangeBookmark& right) {
        return !isInOrder(left, right);
    };
    check(std::adjacent_find(ranges.begin(), ranges.end(), notInOrder) == ranges.end(),
        "ranges are in order, each once");
    check(std::all_of(ranges.begin(), ranges.end(),
              [](const RangeBookmark& range) { return range.start >= 0 && range.end >= 0; }),
        "no range has a negative end");
    const QMap<int, int>& frames = bookmarks.frames();
    check(frames.isEmpty() || frames.firstKey() >= 0, "no frame is negative");
}

void checkSame(const Bookmarks& written, const QString& path)
{
    check(bookmarksfile::write(written, path), "bookmarks that were read can be written");
    Bookmarks again;
    bookmarksfile::read(again, path);
    check(again.mediaPath == written.mediaPath, "the media's path comes back");
    check(again.frames() == written.frames(), "the frames come back");
    check(again.ranges() == written.ranges(), "the ranges come back");
    check(again.currentRangeStart() == written.currentRangeStart()
            && again.currentRangeEnd() == written.currentRangeEnd(),
        "the current range comes back");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QTemporaryDir folder; // the toolkit remembers files by their names
    const QString path = folder.filePath("given.bmk");
    {
        QFile file(path);
        check(file.open(QIODevice::WriteOnly)
                && file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size))
                    == static_cast<qint64>(size),
            "the input can be laid down");
    }
    Bookmarks bookmarks;
    bookmarksfile::read(bookmarks, path);
    checkOrder(bookmarks);
    checkSame(bookmarks, folder.filePath("new.bmk"));
    checkSame(bookmarks, path);
    return 0;
}
