#pragma once

#include "platform/location.h"

#include <QJsonObject>
#include <optional>

namespace cratewell {

struct SystemPaths;

// The JSON files by which the program and the scripts in the editors talk: one object a file, written by one
// side and read by the other, without locks.

// The folder of these files, made when it is missing; a failure shows when a file in it is used.
Location ensureSupportFolder(const SystemPaths &paths);
// Readers see the file before or after, never a part. False when it could not be written.
bool writeExchangeFile(const Location &file, const QJsonObject &object);
// Nothing when there is no such regular file, when it is larger than a message can be, or no JSON object.
std::optional<QJsonObject> readExchangeFile(const Location &file);
void removeExchangeFile(const Location &file);

} // namespace cratewell
