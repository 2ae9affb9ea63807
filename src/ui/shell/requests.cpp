#include "ui/shell/requests.h"

#include "platform/workspace.h"
#include "state/app_state.h"
#include "state/prefs.h"
#include "ui/shell/ui_engine.h"
#include "vault/vault.h"

namespace cratewell {

Requests::Requests(const UiContext &context, QObject *parent) : QObject(parent), m_context(context) {}

Requests *Requests::create(QQmlEngine *engine, QJSEngine *)
{
    return new Requests(UiEngine::contextOf(engine));
}

void Requests::toggleFavorite()
{
    if (const auto &asset = m_context.state.selection())
        m_context.prefs.toggleFavorite(asset->url);
}

void Requests::openInFileManager(const Location &folder)
{
    m_context.workspace.open(folder);
}

void Requests::revealInFileManager(const Location &item)
{
    m_context.workspace.reveal({item});
}

void Requests::newFolderInside(const Location &folder)
{
    m_context.state.requestNewFolder(folder);
}

void Requests::rename(const Location &item)
{
    m_context.state.setRenameTarget(item);
}

void Requests::moveToTrash(const Location &item)
{
    m_context.vault.moveToTrash({item});
}

} // namespace cratewell
