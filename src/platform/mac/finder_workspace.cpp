#include "platform/mac/finder_workspace.h"

namespace cratewell {

using namespace Qt::StringLiterals;

void FinderWorkspace::reveal(const QList<Location> &items)
{
    if (items.isEmpty())
        return;
    QStringList arguments = {u"-R"_s};
    for (const Location &item : items)
        arguments += item.text();
    m_tools.launch(u"open"_s, arguments);
}

void FinderWorkspace::open(const Location &folder)
{
    if (!folder.isEmpty())
        m_tools.launch(u"open"_s, {folder.text()});
}

} // namespace cratewell
