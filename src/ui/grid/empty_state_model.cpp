#include "ui/grid/empty_state_model.h"

#include "state/app_state.h"
#include "ui/shell/asset_actions.h"
#include "ui/shell/ui_engine.h"
#include "vault/category.h"
#include "vault/vault.h"

using namespace Qt::StringLiterals;

namespace cratewell {

namespace {

QString categoryIcon(VaultCategory category)
{
    switch (category) {
    case VaultCategory::Overlays:
        return u"layers"_s;
    case VaultCategory::Luts:
        return u"camera"_s;
    case VaultCategory::Sfx:
        return u"graphic_eq"_s;
    }
    return {};
}

Notice folderNotice(const Scope &scope, const Location &root)
{
    const VaultCategory category = categoryOf(root, scope.folder()).value_or(VaultCategory::Overlays);
    const auto colors = gradient(category);
    return {categoryIcon(category),
            QColor(colors[0]),
            QColor(colors[1]),
            u"Nothing in %1 yet"_s.arg(scope.title()),
            u"Files you put into this folder show up here right away."_s,
            Notice::Action::OpenFolder};
}

} // namespace

Notice noticeFor(const Scope &scope, const QString &search, const Location &root)
{
    if (!search.isEmpty())
        return {u"search"_s,
                QColor(0x8e8e96),
                QColor(0x4a4a52),
                u"No match"_s,
                u"Nothing in %1 matches “%2”."_s.arg(scope.title(), search),
                Notice::Action::ClearSearch};
    switch (scope.kind()) {
    case Scope::Kind::Folder:
        return folderNotice(scope, root);
    case Scope::Kind::Favorites:
        return {u"star"_s,
                QColor(0xffd27a),
                QColor(0xff9f43),
                u"No favorites yet"_s,
                u"Press the star on a card to keep the asset close at hand."_s,
                Notice::Action::ShowAll};
    case Scope::Kind::Recent:
        return {u"schedule"_s,
                QColor(0x8e8e96),
                QColor(0x4a4a52),
                u"Nothing inserted yet"_s,
                u"What you place on a timeline shows up here, newest first."_s,
                Notice::Action::ShowAll};
    default:
        return {u"apps"_s,
                QColor(0x7b5cff),
                QColor(0xff4ecd),
                u"Your vault is empty"_s,
                u"Put overlays, LUTs and sound effects into the vault's folders and they show up here."_s,
                Notice::Action::OpenFolder};
    }
}

QString actionText(Notice::Action action)
{
    switch (action) {
    case Notice::Action::OpenFolder:
        return u"Open Folder"_s;
    case Notice::Action::ShowAll:
        return u"Show All Assets"_s;
    case Notice::Action::ClearSearch:
        return u"Clear Search"_s;
    }
    return {};
}

EmptyStateModel::EmptyStateModel(AppState &state, const Vault &vault, AssetActions &actions)
    : m_state(state), m_vault(vault), m_actions(actions)
{
    connect(&state, &AppState::scopeChanged, this, &EmptyStateModel::renew);
    connect(&state, &AppState::searchChanged, this, &EmptyStateModel::renew);
    connect(&vault, &Vault::rootChanged, this, &EmptyStateModel::renew);
    connect(&vault, &Vault::rescanned, this, &EmptyStateModel::changed);
    renew();
}

EmptyStateModel *EmptyStateModel::create(QQmlEngine *engine, QJSEngine *)
{
    const UiContext &context = UiEngine::contextOf(engine);
    return new EmptyStateModel(context.state, context.vault, context.actions);
}

bool EmptyStateModel::isKnown() const
{
    return m_vault.isScanned();
}

void EmptyStateModel::act()
{
    switch (m_notice.action) {
    case Notice::Action::OpenFolder:
        m_actions.openFolder(m_state.scope().kind() == Scope::Kind::Folder ? m_state.scope().folder()
                                                                           : m_vault.root());
        return;
    case Notice::Action::ShowAll:
        m_state.setScope(Scope::all());
        return;
    case Notice::Action::ClearSearch:
        m_state.setSearch({});
        return;
    }
}

void EmptyStateModel::renew()
{
    m_notice = noticeFor(m_state.scope(), m_state.search(), m_vault.root());
    Q_EMIT changed();
}

} // namespace cratewell
