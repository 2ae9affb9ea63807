#pragma once

#include "platform/error.h"
#include "platform/location.h"

#include <QJsonObject>
#include <optional>

namespace cratewell {

struct SystemPaths;

// The JSON files by which the program and the scripts in the editors talk: one object a file, written by one
// side and read by the other, without locks.

// The folder of these files, made when it is missing; a failure shows when a file in it is used.
Location ensureSupportFolder(const SystemPaths &paths);
// Readers see the file before or after, never a part.
[[nodiscard]] Result<void> writeExchangeFile(const Location &file, const QJsonObject &object);
// Nothing when there is no such regular file, when it is larger than a message can be, or no JSON object.
std::optional<QJsonObject> readExchangeFile(const Location &file);
// Only the request with this id: another may have taken its place.
void removeRequest(const Location &file, const QString &id);

} // namespace cratewell
