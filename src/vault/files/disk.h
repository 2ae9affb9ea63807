#pragma once

#include "platform/location.h"

#include <vector>

namespace cratewell {

struct OperationProgress;

// What operations on files are made of. Calls that can fail give 0 or an errno value; none leaves a half-made
// target behind. Any thread.
namespace disk {

// Something is there, be it a link that leads nowhere.
bool exists(const Location &place);
// Links are not followed.
bool isFolder(const Location &place);
// Names in a folder, hidden ones too, in the order the system lists them; empty when it cannot be read.
std::vector<QByteArray> names(const Location &folder);
// Bytes of a file or of all files below a folder.
qint64 sizeOf(const Location &place);

// With what leads to it; fails with EEXIST only when something other than a folder is in the way.
int makeFolders(const Location &folder);
// Fails with EEXIST when the folder is there already.
int makeFolder(const Location &folder);
// EEXIST when something is at `to`, EXDEV when it lies on another file system; else all or nothing.
int renameWithoutReplacing(const Location &from, const Location &to);
// Bytes, permissions and times of a regular file, by the file system's own cloning where there is one. `to`
// must not exist. ECANCELED when the progress says so.
int copyFile(const Location &from, const Location &to, OperationProgress &progress);
// A file, a link as a link, or a folder with everything in it. `to` must not exist.
int copyTree(const Location &from, const Location &to, OperationProgress &progress);
int remove(const Location &place);
// Removes an empty folder.
int removeFolder(const Location &folder);
// Returns when what was written to the file system of `place` has reached the disk.
int flush(const Location &place);
// Writes the bytes to a file beside `file`, flushes it and puts it in the file's place.
int replace(const Location &file, const QByteArray &bytes);

} // namespace disk

} // namespace cratewell
