#pragma once

#include "platform/location.h"

#include <QJsonObject>
#include <QProcessEnvironment>
#include <QStringList>
#include <QTemporaryDir>

namespace cratewell::test {

// A stand-in Resolve with a fresh project in a folder of its own, and the interpreter that talks to it.
class StandInResolve
{
public:
    StandInResolve();
    ~StandInResolve();

    // Python statements over `state` (the whole project file), `host`, `failures`, `media`, `project`,
    // `timeline` and place(track, name, start, frames). False when they failed.
    [[nodiscard]] bool arrange(const QString &statements);

    // An empty file in the stand-in's folder.
    Location file(QByteArrayView name) const;
    // Makes the stand-in reachable for a script.
    QProcessEnvironment environment() const;
    QJsonObject project() const;
    // What inserts have placed, video from the lowest track up, then audio: "V2 Smoke.mov 86652-86772 of
    // 0-120 mode 5".
    QStringList placed() const;

    const Location &folder() const { return m_folder; }
    static Location interpreter();

private:
    Location projectFile() const;

    QTemporaryDir m_temporary;
    Location m_folder;
};

} // namespace cratewell::test
