#include "vault/category.h"

#include <gmock/gmock.h>

namespace cratewell {
namespace {

using namespace Qt::StringLiterals;
using testing::ElementsAre;

TEST(AssetKind, IsDecidedByTheExtensionAlone)
{
    const std::vector<std::pair<const char *, std::optional<AssetKind>>> cases{
        {"clip.mp4", AssetKind::Video},
        {"clip.MP4", AssetKind::Video},
        {"a.m4v", AssetKind::Video},
        {"Flash.MOV", AssetKind::Video},
        {"a.png", AssetKind::Image},
        {"a.JPeG", AssetKind::Image},
        {"a.tif", AssetKind::Image},
        {"a.tiff", AssetKind::Image},
        {"a.heic", AssetKind::Image},
        {"a.gif", AssetKind::Image},
        {"a.webp", AssetKind::Image},
        {"grade.CUBE", AssetKind::Lut},
        {"film.3dl", AssetKind::Lut},
        {"a.wav", AssetKind::Audio},
        {"a.aiff", AssetKind::Audio},
        {"a.m4a", AssetKind::Audio},
        {"a.caf", AssetKind::Audio},
        {"a.flac", AssetKind::Audio},
        {"a.b.c.aac", AssetKind::Audio},
        {"\xff\xfe.mp3", AssetKind::Audio},
        {" .wav", AssetKind::Audio},
        {"clip.mp4 ", std::nullopt},
        {"mov", std::nullopt},
        {".cube", std::nullopt},
        {"a.", std::nullopt},
        {"", std::nullopt},
        {"a.mov.txt", std::nullopt},
        {"a.movx", std::nullopt},
        {"a.xmov", std::nullopt},
        {"a.mo\xc4\xb1v", std::nullopt},
        {"a.mp4.crdownload", std::nullopt},
    };
    for (const auto &[name, kind] : cases)
        EXPECT_EQ(kindOf(QByteArrayView(name)), kind) << name;
}

TEST(VaultCategory, PlacesFallUnderTheCategoryWhoseFolderHoldsThem)
{
    const Location root = Location::fromText(u"/home/me/Vault"_s);
    const std::vector<std::pair<const char *, std::optional<VaultCategory>>> cases{
        {"/home/me/Vault", std::nullopt},
        {"/home/me/Vault/LUTs", VaultCategory::Luts},
        {"/home/me/Vault/LUTs/Film/a.cube", VaultCategory::Luts},
        {"/home/me/Vault/LUTsExtra/a.cube", std::nullopt},
        {"/home/me/Vault/luts/a.cube", std::nullopt},
        {"/home/me/Vault/SFX/", VaultCategory::Sfx},
        {"/home/me/Vault/.Cratewell Trash/SFX/a.wav", std::nullopt},
        {"/other/Overlays/a.mov", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto &[path, category] : cases)
        EXPECT_EQ(categoryOf(root, Location::fromBytes(QByteArrayView(path))), category) << path;

    EXPECT_TRUE(isCategoryRoot(root, Location::fromBytes("/home/me/Vault/SFX/")));
    EXPECT_FALSE(isCategoryRoot(root, Location::fromBytes("/home/me/Vault/SFX/Hits")));
    EXPECT_FALSE(isCategoryRoot({}, {}));
    EXPECT_FALSE(categoryOf({}, Location::fromBytes("/Overlays/a.mov")));
}

TEST(VaultCategory, TakesTheKindsWhoseDefaultItIs)
{
    EXPECT_TRUE(accepts(VaultCategory::Overlays, AssetKind::Image));
    EXPECT_FALSE(accepts(VaultCategory::Luts, AssetKind::Image));
    EXPECT_EQ(defaultCategory(AssetKind::Video), VaultCategory::Overlays);
    EXPECT_EQ(defaultCategory(AssetKind::Audio), VaultCategory::Sfx);
    for (const VaultCategory category : allCategories)
        EXPECT_EQ(categoryFromRawValue(rawValue(category)), category);
    EXPECT_FALSE(categoryFromRawValue(u"Overlays"));
    EXPECT_THAT(gradient(VaultCategory::Luts), ElementsAre(u"#2FD6FF"_s, u"#4A5CFF"_s));
}

} // namespace
} // namespace cratewell
