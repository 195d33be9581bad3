#pragma once

class Bookmarks;
class QString;

/// Bookmarks in a file: an INI file with the group "main". Frames stand as "12,40,97,", ranges as a
/// list of "start,end,name".
namespace bookmarksfile {

/// Replaces the bookmarks by those of the file; entries that cannot be read are left out. A range
/// needs a name. What is no file empties the bookmarks and leaves the media's path.
void read(Bookmarks& bookmarks, const QString& path);

/// False where the file could not be written; it then is as it was before.
[[nodiscard]] bool write(const Bookmarks& bookmarks, const QString& path);

} // namespace bookmarksfile
