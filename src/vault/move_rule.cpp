#include "vault/move_rule.h"

namespace cratewell {

MoveRule::MoveRule(const Location &root, const Location &folder)
    : m_resolvedRoot(root.resolved()), m_resolvedFolder(folder.resolved()),
      m_category(categoryOf(root, folder))
{
}

bool MoveRule::allows(const Location &item) const
{
    // A category folder may itself be a link, so only the way to it is resolved.
    if (isCategoryRoot(m_resolvedRoot, item.parent().resolved().child(item.nameBytes())))
        return false;
    return allows(kindOf(item), item.resolved());
}

bool MoveRule::allows(std::optional<AssetKind> kind, const Location &resolved) const
{
    if (kind && m_category && !accepts(*m_category, *kind))
        return false;
    return resolved.parent() != m_resolvedFolder && resolved != m_resolvedFolder &&
           !m_resolvedFolder.isInside(resolved);
}

} // namespace cratewell
