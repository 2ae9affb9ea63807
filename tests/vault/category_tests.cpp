#include "vault/move_rule.h"
#include "vault/temporary_vault.h"

#include <gtest/gtest.h>

namespace cratewell {
namespace {

TEST(AssetKind, IsDecidedByTheExtensionAlone)
{
    const std::pair<std::optional<AssetKind>, std::vector<const char *>> cases[] = {
        {AssetKind::Video, {"clip.mp4", "a.m4v", "Flash.MOV"}},
        {AssetKind::Image, {"a.png", "a.JPeG", "a.jpg", "a.tif", "a.tiff", "a.heic", "a.gif", "a.webp"}},
        {AssetKind::Lut, {"grade.CUBE", "film.3dl"}},
        {AssetKind::Audio,
         {"a.wav", "a.aif", "a.aiff", "a.m4a", "a.caf", "a.flac", "a.b.c.aac", "\xff\xfe.mp3"}},
        {std::nullopt, {"clip.mp4 ", "mov", ".cube", "a.", "", "a.mov.txt", "a.xmov", "a.mo\xc4\xb1v"}},
    };
    for (const auto &[kind, names] : cases) {
        for (const char *name : names)
            EXPECT_EQ(kindOf(QByteArrayView(name)), kind) << name;
    }
}

TEST(MoveRule, LeavesCategoriesAndWhatDoesNotBelongWhereTheyAre)
{
    const test::TemporaryVault vault;
    for (const char *file : {"SFX/b.wav", "SFX/Hits/a.wav", "SFX/Hits more/c.wav", "Overlays/Pack.mov/d.mov",
                             "../elsewhere/e.cube"})
        vault.write(file);
    vault.makeFolder("SFX/Hits/Deep");
    vault.link("LUTs", "../elsewhere");
    vault.link("../alias", "vault");
    vault.link("SFX/shortcut", "Hits");
    const struct
    {
        const char *item;
        const char *folder;
        bool allowed;
    } cases[] = {
        {"SFX/Hits/a.wav", "SFX", true},     {"SFX/b.wav", "../alias/SFX", false},
        {"SFX/b.wav", "Overlays", false},    {"SFX/b.wav", "../elsewhere", true},
        {"SFX/Hits", "Overlays", true},      {"SFX/Hits", "SFX/Hits/Deep", false},
        {"SFX/Hits", "SFX/shortcut", false}, {"SFX/Hits", "SFX/Hits more", true},
        {"Overlays/Pack.mov", "SFX", false}, {"LUTs/e.cube", "LUTs", false},
        {"SFX", "../elsewhere", false},      {"../alias/LUTs", "Overlays", false},
    };
    for (const auto &[item, folder, allowed] : cases) {
        const MoveRule rule(vault.root(), vault.at(folder));
        EXPECT_EQ(rule.allows(vault.at(item)), allowed) << item << " to " << folder;
    }
}

} // namespace
} // namespace cratewell
