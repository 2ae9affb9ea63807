#pragma once

#include "platform/location.h"
#include "vault/asset.h"

#include <QCoro/QCoroTask>
#include <QJsonObject>
#include <chrono>
#include <optional>

namespace cratewell {

class Prefs;

// What the program and the scripts in the editors say to each other.

// The record the editor-side scripts read, with an id of its own; `blend` is the editor's own number.
QJsonObject insertRequest(const Asset &asset, int blend, const Prefs &prefs);
// Waits for an answer file whose "id" is this one; nothing after the time-out.
QCoro::Task<std::optional<QJsonObject>> awaitResponse(Location file, QString id,
                                                      std::chrono::milliseconds timeout);

} // namespace cratewell
