#include "vault/snapshot/snapshot_builder.h"

#include <algorithm>

namespace cratewell {

namespace {

class SnapshotBuilder
{
public:
    explicit SnapshotBuilder(SnapshotData &data) : m_data(data) {}

    FolderNode add(const ScannedFolder &folder);
    void pointToNodes(const FolderNode &node);

private:
    void addRun(quint32 folder, quint32 from, quint32 to);
    void sortChildren(std::vector<FolderNode> &children) const;

    SnapshotData &m_data;
    NameCollation m_collation;
};

FolderNode SnapshotBuilder::add(const ScannedFolder &folder)
{
    const FolderContents &contents = *folder.contents;
    const quint32 index = quint32(m_data.folders.size());
    m_data.folders.push_back({folder.contents, {}, nullptr});
    m_data.folderIndex.insert(contents.url, index);
    m_data.totalSize += contents.totalSize;
    m_data.nameBytes += contents.nameBytes;

    FolderNode node;
    node.url = contents.url;
    node.assets.first = AssetIndex(m_data.assets.size());
    node.children.reserve(folder.children.size());
    quint32 position = 0;
    for (size_t i = 0; i < folder.children.size(); ++i) {
        addRun(index, position, contents.children[i].position);
        position = contents.children[i].position;
        node.children.push_back(add(*folder.children[i]));
    }
    addRun(index, position, quint32(contents.assets.size()));
    node.assets.last = AssetIndex(m_data.assets.size());
    node.count = int(node.assets.count());
    sortChildren(node.children);
    return node;
}

void SnapshotBuilder::addRun(quint32 folder, quint32 from, quint32 to)
{
    if (from == to)
        return;
    SnapshotFolder &holder = m_data.folders[folder];
    const AssetIndex first = AssetIndex(m_data.assets.size());
    holder.runs.push_back({from, first, to - from});
    m_data.runs.push_back({holder.contents.get(), from, first, to - from});
    for (quint32 i = from; i < to; ++i)
        m_data.assets.push_back(&holder.contents->assets[i]);
}

void SnapshotBuilder::sortChildren(std::vector<FolderNode> &children) const
{
    std::ranges::stable_sort(children, [&](const FolderNode &a, const FolderNode &b) {
        return m_collation.compare(a.url.nameBytes(), b.url.nameBytes()) < 0;
    });
}

void SnapshotBuilder::pointToNodes(const FolderNode &node)
{
    m_data.folders[m_data.folderIndex.value(node.url)].node = &node;
    for (const FolderNode &child : node.children)
        pointToNodes(child);
}

} // namespace

void buildSnapshot(SnapshotData &data, const Location &root, const DirectoryScanner &scanner)
{
    data.root = root;
    data.scanned = true;
    data.folders.reserve(scanner.folderCount());
    data.assets.reserve(scanner.assetCount());
    SnapshotBuilder builder(data);
    for (const VaultCategory category : allCategories)
        data.trees[size_t(category)] = builder.add(scanner.category(category));
    for (const FolderNode &tree : data.trees)
        builder.pointToNodes(tree);
}

} // namespace cratewell
