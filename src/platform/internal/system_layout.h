#pragma once

#include "platform/location.h"

namespace cratewell {

// Where the editors keep what we use, on the system this program was built for: below the file system's root,
// and for the scripts below the user's home.
struct SystemLayout
{
    QByteArrayView resolveApi;
    QByteArrayView resolveLibrary;
    QByteArrayView resolveUserScripts;
};

SystemLayout systemLayout();
Location executableFolder();

} // namespace cratewell
