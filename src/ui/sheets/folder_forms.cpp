#include "ui/sheets/folder_forms.h"

#include "state/app_state.h"
#include "ui/sheets/name_check.h"
#include "ui/shell/ui_engine.h"
#include "vault/vault.h"

using namespace Qt::StringLiterals;

namespace cratewell {

void NewFolderForm::follow(AppState &state)
{
    const auto &parent = state.newFolderParent();
    const QString name = parent ? parent->name() : u"the vault"_s;
    const size_t count = state.pendingMove().size();
    m_explanation = count > 0 ? u"%1 items will move into it, inside %2"_s.arg(count).arg(name)
                              : u"Inside %1"_s.arg(name);
}

void NewFolderForm::classBegin()
{
    follow(uiContext(*this).state);
}

QString NewFolderForm::problem(const QString &name)
{
    return nameProblem(name);
}

void RenameForm::follow(const AppState &state, const Vault &vault)
{
    m_item = state.renameTarget().value_or(Location());
    m_isFile = vault.snapshot()->find(m_item).has_value();
}

void RenameForm::classBegin()
{
    const UiContext &objects = uiContext(*this);
    follow(objects.state, objects.vault);
}

QString RenameForm::title() const
{
    return m_isFile ? u"Rename File"_s : u"Rename Folder"_s;
}

int RenameForm::selectionLength() const
{
    return int(m_isFile ? m_item.baseName().size() : m_item.name().size());
}

QString RenameForm::problem(const QString &name)
{
    return nameProblem(name);
}

QString RenameForm::warning(const QString &name) const
{
    return m_isFile ? extensionWarning(m_item, name) : QString();
}

} // namespace cratewell
