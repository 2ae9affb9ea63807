#include "vault/category.h"

#include <algorithm>

namespace cratewell {

using namespace Qt::StringLiterals;

namespace {

struct CategoryTraits
{
    const char16_t *rawValue;
    const char *folderName;
    std::span<const char *const> starterFolders;
    std::array<const char16_t *, 2> gradient;
};

constexpr std::array overlayStarters{"Light Leaks", "Glitches", "Flashes", "Grains", "Transitions"};
constexpr std::array sfxStarters{"Sports", "Whooshes", "Risers",  "Hits",
                                 "Clicks", "Buttons",  "Cameras", "Shutters"};

const CategoryTraits &traits(VaultCategory category)
{
    static const std::array<CategoryTraits, allCategories.size()> table{{
        {u"overlays", "Overlays", overlayStarters, {u"#FF8C3A", u"#FF4ECD"}},
        {u"luts", "LUTs", {}, {u"#2FD6FF", u"#4A5CFF"}},
        {u"sfx", "SFX", sfxStarters, {u"#62D991", u"#1FA2A6"}},
    }};
    return table[size_t(category)];
}

} // namespace

QString rawValue(VaultCategory category)
{
    return QString::fromUtf16(traits(category).rawValue);
}

QString folderName(VaultCategory category)
{
    return QString::fromLatin1(traits(category).folderName);
}

bool accepts(VaultCategory category, AssetKind kind)
{
    return defaultCategory(kind) == category;
}

VaultCategory defaultCategory(AssetKind kind)
{
    switch (kind) {
    case AssetKind::Video:
    case AssetKind::Image:
        return VaultCategory::Overlays;
    case AssetKind::Lut:
        return VaultCategory::Luts;
    case AssetKind::Audio:
        return VaultCategory::Sfx;
    }
    return VaultCategory::Overlays;
}

std::span<const char *const> starterFolders(VaultCategory category)
{
    return traits(category).starterFolders;
}

std::array<QString, 2> gradient(VaultCategory category)
{
    const auto &[start, end] = traits(category).gradient;
    return {QString::fromUtf16(start), QString::fromUtf16(end)};
}

Location categoryFolder(const Location &root, VaultCategory category)
{
    if (root.isEmpty())
        return {};
    return root.child(QByteArrayView(traits(category).folderName));
}

std::optional<VaultCategory> categoryOf(const Location &root, const Location &place)
{
    for (const VaultCategory category : allCategories) {
        const Location folder = categoryFolder(root, category);
        if (!place.isEmpty() && (place == folder || place.isInside(folder)))
            return category;
    }
    return std::nullopt;
}

bool isCategoryRoot(const Location &root, const Location &place)
{
    return !place.isEmpty() && std::ranges::any_of(allCategories, [&](VaultCategory category) {
        return place == categoryFolder(root, category);
    });
}

} // namespace cratewell
