#include "state/scope.h"

namespace cratewell {

Scope Scope::of(Kind kind)
{
    Q_ASSERT(kind != Kind::Folder && kind != Kind::Plugin);
    Scope scope;
    scope.m_kind = kind;
    return scope;
}

Scope Scope::inFolder(const Location &folder)
{
    Scope scope;
    scope.m_kind = Kind::Folder;
    scope.m_folder = folder;
    return scope;
}

Scope Scope::plugin(const QString &page)
{
    Scope scope;
    scope.m_kind = Kind::Plugin;
    scope.m_page = page;
    return scope;
}

QString Scope::title() const
{
    switch (m_kind) {
    case Kind::Plugin:
        return QStringLiteral("Plugins");
    case Kind::Folder:
        return m_folder.name();
    case Kind::All:
        return QStringLiteral("All Assets");
    case Kind::Favorites:
        return QStringLiteral("Favorites");
    case Kind::Recent:
        return QStringLiteral("Recently Inserted");
    case Kind::Importer:
        return QStringLiteral("Import");
    case Kind::Trash:
        return QStringLiteral("Trash");
    }
    return {};
}

} // namespace cratewell
