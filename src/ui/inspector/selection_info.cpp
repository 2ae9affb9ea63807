#include "ui/inspector/selection_info.h"

#include "integrations/inserter.h"
#include "state/app_state.h"
#include "state/prefs.h"
#include "ui/shell/ui_engine.h"
#include "vault/vault.h"

namespace cratewell {

QString placeText(const Location &root, const Location &asset)
{
    Location folder = asset.parent();
    QString text = folder.name();
    if (!folder.isInside(root))
        return text;
    for (folder = folder.parent(); folder.isInside(root); folder = folder.parent())
        text = QStringLiteral("%1 › %2").arg(folder.name(), text);
    return text;
}

SelectionInfo::SelectionInfo(const AppState &state, const Vault &vault, const Prefs &prefs,
                             Inserter &inserter)
    : m_state(state), m_vault(vault), m_prefs(prefs), m_inserter(inserter)
{
    connect(&state, &AppState::selectionChanged, this, &SelectionInfo::takeAsset);
    connect(&prefs, &Prefs::favoritesChanged, this, &SelectionInfo::favoriteChanged);
    connect(&inserter, &Inserter::targetChanged, this, &SelectionInfo::takeDestination);
    takeAsset();
}

SelectionInfo *SelectionInfo::create(QQmlEngine *engine, QJSEngine *)
{
    const UiContext &context = UiEngine::contextOf(engine);
    return new SelectionInfo(context.state, context.vault, context.prefs, context.inserter);
}

QString SelectionInfo::kindLabel() const
{
    return m_asset ? cratewell::kindLabel(m_asset->kind) : QString();
}

QString SelectionInfo::place() const
{
    return m_asset ? placeText(m_vault.root(), m_asset->url) : QString();
}

bool SelectionInfo::isFavorite() const
{
    return m_asset && m_prefs.favorites().contains(m_asset->url);
}

void SelectionInfo::takeAsset()
{
    m_asset = m_state.selection();
    Q_EMIT assetChanged();
    Q_EMIT favoriteChanged();
    takeDestination();
}

void SelectionInfo::takeDestination()
{
    const QString destination = m_asset ? m_inserter.targetDescription(*m_asset) : QString();
    if (destination == m_destination)
        return;
    m_destination = destination;
    Q_EMIT destinationChanged();
}

} // namespace cratewell
