#include "vault/category.h"

#include <gtest/gtest.h>

namespace cratewell {
namespace {

using namespace Qt::StringLiterals;

TEST(AssetKind, IsDecidedByTheExtensionAlone)
{
    const std::pair<std::optional<AssetKind>, std::vector<const char *>> cases[] = {
        {AssetKind::Video, {"clip.mp4", "clip.MP4", "a.m4v", "Flash.MOV"}},
        {AssetKind::Image, {"a.png", "a.JPeG", "a.jpg", "a.tif", "a.tiff", "a.heic", "a.gif", "a.webp"}},
        {AssetKind::Lut, {"grade.CUBE", "film.3dl"}},
        {AssetKind::Audio,
         {"a.wav", "a.aif", "a.aiff", "a.m4a", "a.caf", "a.flac", "a.b.c.aac", "\xff\xfe.mp3", " .wav"}},
        {std::nullopt,
         {"clip.mp4 ", "mov", ".cube", "a.", "", "a.mov.txt", "a.movx", "a.xmov", "a.mo\xc4\xb1v",
          "a.mp4.crdownload"}},
    };
    for (const auto &[kind, names] : cases) {
        for (const char *name : names)
            EXPECT_EQ(kindOf(QByteArrayView(name)), kind) << name;
    }
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

} // namespace
} // namespace cratewell
