#include "ui/sidebar/folder_tree_model.h"

#include "state/folder_expansion.h"
#include "state/prefs.h"
#include "ui/shell/ui_engine.h"
#include "vault/vault.h"

#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace cratewell {

namespace {

QString symbolOf(const FolderLine &line)
{
    if (line.depth > 0)
        return u"folder"_s;
    switch (line.category) {
    case VaultCategory::Overlays:
        return u"layers"_s;
    case VaultCategory::Luts:
        return u"camera"_s;
    case VaultCategory::Sfx:
        return u"graphic_eq"_s;
    }
    return u"folder"_s;
}

// The lines that stand in view, parents before children.
void appendLines(std::vector<FolderLine> &lines, const FolderNode &node, VaultCategory category, int depth,
                 const FolderExpansion &expansion)
{
    const bool expandable = !node.children.empty();
    const bool expanded = expandable && expansion.expanded(node.url, depth == 0);
    lines.push_back({node.url, category, depth, node.count, expandable, expanded});
    if (!expanded)
        return;
    for (const FolderNode &child : node.children)
        appendLines(lines, child, category, depth + 1, expansion);
}

QSet<Location> foldersOf(const std::vector<FolderLine> &lines)
{
    QSet<Location> folders;
    folders.reserve(qsizetype(lines.size()));
    for (const FolderLine &line : lines)
        folders.insert(line.folder);
    return folders;
}

// Calls `perform(first, last)` for each run of indices below `count` that `chosen` accepts, the last run
// first.
template<typename Chosen, typename Perform> void forRunsBackward(int count, Chosen chosen, Perform perform)
{
    for (int last = count - 1; last >= 0; --last) {
        if (!chosen(last))
            continue;
        int first = last;
        while (first > 0 && chosen(first - 1))
            --first;
        perform(first, last);
        last = first;
    }
}

} // namespace

FolderTreeModel::FolderTreeModel(const Vault &vault, const Prefs &prefs, Defaults &defaults)
    : m_vault(vault), m_prefs(prefs), m_defaults(defaults)
{
    connect(&vault, &Vault::rescanned, this, &FolderTreeModel::refresh);
    connect(&prefs, &Prefs::folderColorsChanged, this, [this] {
        if (!m_lines.empty())
            Q_EMIT dataChanged(index(0), index(rowCount() - 1), {TintRole, TintedRole});
    });
    refresh();
}

FolderTreeModel *FolderTreeModel::create(QQmlEngine *engine, QJSEngine *)
{
    const UiContext &context = UiEngine::contextOf(engine);
    return new FolderTreeModel(context.vault, context.prefs, context.defaults);
}

void FolderTreeModel::refresh()
{
    const FolderExpansion expansion(m_defaults);
    std::vector<FolderLine> lines;
    for (const VaultCategory category : allCategories) {
        if (const FolderNode *tree = m_vault.snapshot()->tree(category))
            appendLines(lines, *tree, category, 0, expansion);
        else
            lines.push_back({.folder = m_vault.categoryUrl(category), .category = category});
    }
    change(std::move(lines));
}

// Folders that stay keep their order (a folder's place among its siblings depends on its name alone), so what
// differs is what left and what came.
void FolderTreeModel::change(std::vector<FolderLine> lines)
{
    const QSet<Location> after = foldersOf(lines);
    forRunsBackward(
        int(m_lines.size()), [&](int row) { return !after.contains(m_lines[size_t(row)].folder); },
        [this](int first, int last) {
            beginRemoveRows({}, first, last);
            m_lines.erase(m_lines.begin() + first, m_lines.begin() + last + 1);
            endRemoveRows();
        });

    const QSet<Location> before = foldersOf(m_lines);
    const int count = int(lines.size());
    for (int row = 0; row < count; ++row) {
        int end = row;
        while (end < count && !before.contains(lines[size_t(end)].folder))
            ++end;
        if (end > row) {
            beginInsertRows({}, row, end - 1);
            m_lines.insert(m_lines.begin() + row, lines.begin() + row, lines.begin() + end);
            endInsertRows();
            row = end - 1;
        } else if (m_lines[size_t(row)] != lines[size_t(row)]) {
            m_lines[size_t(row)] = lines[size_t(row)];
            Q_EMIT dataChanged(index(row), index(row));
        }
    }
}

int FolderTreeModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_lines.size());
}

QHash<int, QByteArray> FolderTreeModel::roleNames() const
{
    return {{FolderRole, "folder"}, {NameRole, "name"},         {SymbolRole, "symbol"},
            {TintRole, "tint"},     {TintedRole, "tinted"},     {DepthRole, "depth"},
            {CountRole, "count"},   {ExpandedRole, "expanded"}, {ExpandableRole, "expandable"}};
}

QVariant FolderTreeModel::data(const QModelIndex &index, int role) const
{
    if (!isRow(index.row()))
        return {};
    const FolderLine &line = m_lines[size_t(index.row())];
    switch (role) {
    case FolderRole:
        return QVariant::fromValue(line.folder);
    case NameRole:
    case Qt::DisplayRole:
        return line.folder.name();
    case SymbolRole:
        return symbolOf(line);
    case TintRole:
        return tint(line);
    case TintedRole:
        return tint(line).isValid();
    case DepthRole:
        return line.depth;
    case CountRole:
        return line.count;
    case ExpandableRole:
        return line.expandable;
    case ExpandedRole:
        return line.expanded;
    default:
        return {};
    }
}

QColor FolderTreeModel::tint(const FolderLine &line) const
{
    const QColor own = m_prefs.color(line.folder);
    if (own.isValid() || line.depth > 0)
        return own;
    return QColor(gradient(line.category)[0]);
}

void FolderTreeModel::setExpanded(int row, bool expanded)
{
    if (!expandableAt(row) || expandedAt(row) == expanded)
        return;
    FolderExpansion(m_defaults).setExpanded(m_lines[size_t(row)].folder, expanded);
    refresh();
}

Location FolderTreeModel::folderAt(int row) const
{
    return isRow(row) ? m_lines[size_t(row)].folder : Location();
}

int FolderTreeModel::parentOf(int row) const
{
    if (!isRow(row) || m_lines[size_t(row)].depth == 0)
        return -1;
    return rowOf(m_lines[size_t(row)].folder.parent());
}

bool FolderTreeModel::expandableAt(int row) const
{
    return isRow(row) && m_lines[size_t(row)].expandable;
}

bool FolderTreeModel::expandedAt(int row) const
{
    return isRow(row) && m_lines[size_t(row)].expanded;
}

int FolderTreeModel::rowOf(const QString &folderText) const
{
    return rowOf(Location::fromText(folderText));
}

int FolderTreeModel::rowOf(const Location &folder) const
{
    const auto found = std::ranges::find(m_lines, folder, &FolderLine::folder);
    return found == m_lines.end() ? -1 : int(found - m_lines.begin());
}

} // namespace cratewell
