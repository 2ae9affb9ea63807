#include "ui/sheets/name_forms.h"

#include "state/app_state.h"
#include "ui/sheets/name_check.h"
#include "ui/shell/ui_engine.h"
#include "vault/vault.h"

using namespace Qt::StringLiterals;

namespace cratewell {

QString RenameQuestion::title() const
{
    return isFile ? u"Rename File"_s : u"Rename Folder"_s;
}

QString RenameQuestion::warning(const QString &typed) const
{
    return isFile ? extensionWarning(item, typed) : QString();
}

NameForms::NameForms(const AppState &state, const Vault &vault) : m_state(state), m_vault(vault) {}

NameForms *NameForms::create(QQmlEngine *engine, QJSEngine *)
{
    const UiContext &context = UiEngine::contextOf(engine);
    return new NameForms(context.state, context.vault);
}

QString NameForms::newFolderExplanation() const
{
    const auto &parent = m_state.newFolderParent();
    const QString name = parent ? parent->name() : u"the vault"_s;
    const size_t count = m_state.pendingMove().size();
    return count > 0 ? u"%1 items will move into it, inside %2"_s.arg(count).arg(name)
                     : u"Inside %1"_s.arg(name);
}

RenameQuestion NameForms::renameQuestion() const
{
    const Location item = m_state.renameTarget().value_or(Location());
    return {item, m_vault.snapshot()->find(item).has_value()};
}

QString NameForms::problem(const QString &typed)
{
    return nameProblem(typed);
}

} // namespace cratewell
