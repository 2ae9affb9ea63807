#pragma once

#include <QString>

namespace cratewell::portal {

inline QString service()
{
    return QStringLiteral("org.freedesktop.portal.Desktop");
}
inline QString path()
{
    return QStringLiteral("/org/freedesktop/portal/desktop");
}
inline QString settings()
{
    return QStringLiteral("org.freedesktop.portal.Settings");
}
inline QString fileChooser()
{
    return QStringLiteral("org.freedesktop.portal.FileChooser");
}
inline QString request()
{
    return QStringLiteral("org.freedesktop.portal.Request");
}

} // namespace cratewell::portal
