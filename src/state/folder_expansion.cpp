#include "state/folder_expansion.h"

#include "platform/defaults.h"

namespace cratewell {

static QString keyOf(const Location &folder)
{
    return QStringLiteral("expanded.") + folder.text();
}

bool FolderExpansion::expanded(const Location &folder, bool fallback) const
{
    return m_defaults.boolean(keyOf(folder)).value_or(fallback);
}

void FolderExpansion::setExpanded(const Location &folder, bool expanded)
{
    m_defaults.setValue(keyOf(folder), expanded);
}

} // namespace cratewell
