#pragma once

#include "platform/location.h"

#include <QList>

namespace cratewell {

// The user's desktop: its file manager. Calls return at once; what cannot be shown is not.
class Workspace
{
public:
    virtual ~Workspace() = default;
    // Opens file-manager windows that select these items, one window a folder.
    virtual void reveal(const QList<Location> &items) = 0;
    // Opens a folder.
    virtual void open(const Location &folder) = 0;
};

} // namespace cratewell
