#include "ui/shell/requests.h"

#include "platform/workspace.h"
#include "state/app_state.h"
#include "state/prefs.h"
#include "vault/vault.h"

#include <QQmlEngine>

namespace cratewell {

Requests::Requests(const UiObjects &objects, QObject *parent) : QObject(parent), m_objects(objects) {}

Requests *Requests::create(QQmlEngine *engine, QJSEngine *)
{
    return new Requests(uiObjects(*engine));
}

void Requests::toggleFavorite()
{
    if (const auto &asset = m_objects.state.selection())
        m_objects.prefs.toggleFavorite(asset->url);
}

void Requests::openInFileManager(const Location &folder)
{
    m_objects.workspace.open(folder);
}

void Requests::revealInFileManager(const Location &item)
{
    m_objects.workspace.reveal({item});
}

void Requests::newFolderInside(const Location &folder)
{
    m_objects.state.requestNewFolder(folder);
}

void Requests::rename(const Location &item)
{
    m_objects.state.setRenameTarget(item);
}

void Requests::moveToTrash(const Location &item)
{
    m_objects.vault.moveToTrash({item});
}

} // namespace cratewell
