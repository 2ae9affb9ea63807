#pragma once

#include <QByteArrayView>
#include <QLatin1StringView>
#include <array>

namespace cratewell {

// What the video editors are called on Linux. Premiere does not run there.
struct LinuxEditor
{
    QLatin1StringView identifier;
    QByteArrayView folder;     // the name of the folder that holds the program
    QByteArrayView executable; // its whole file name
    QLatin1StringView windowClass;
};

inline constexpr std::array linuxEditors = {
    LinuxEditor{QLatin1StringView("com.blackmagic-design.DaVinciResolve"), "bin", "resolve",
                QLatin1StringView("resolve")},
};

} // namespace cratewell
