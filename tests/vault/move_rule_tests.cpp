#include "vault/move_rule.h"
#include "vault/temporary_vault.h"

#include <gtest/gtest.h>

namespace cratewell {
namespace {

TEST(MoveRule, LeavesCategoriesAndWhatDoesNotBelongWhereTheyAre)
{
    const test::TemporaryVault vault;
    for (const char *file : {"SFX/b.wav", "SFX/notes.txt", "SFX/Hits/a.wav", "SFX/Hits more/c.wav",
                             "Overlays/Pack.mov/d.mov", "../elsewhere/e.cube"})
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
        {"SFX/Hits/a.wav", "SFX", true},      {"SFX/b.wav", "SFX/Hits", true},
        {"SFX/b.wav", "SFX", false},          {"SFX/b.wav", "../alias/SFX", false},
        {"SFX/b.wav", "Overlays", false},     {"SFX/b.wav", "../elsewhere", true},
        {"SFX/notes.txt", "LUTs", true},      {"SFX/Hits", "Overlays", true},
        {"SFX/Hits", "SFX/Hits", false},      {"SFX/Hits", "SFX/Hits/Deep", false},
        {"SFX/Hits", "SFX/shortcut", false},  {"SFX/Hits", "SFX/Hits more", true},
        {"Overlays/Pack.mov", "SFX", false},  {"LUTs/e.cube", "LUTs", false},
        {"SFX", "Overlays", false},           {"SFX", "../elsewhere", false},
        {"LUTs", "Overlays", false},          {"../alias/SFX", "Overlays", false},
        {"../alias/LUTs", "Overlays", false}, {"../alias/SFX/Hits", "Overlays", true},
    };
    for (const auto &[item, folder, allowed] : cases) {
        const MoveRule rule(vault.root(), vault.at(folder));
        EXPECT_EQ(rule.allows(vault.at(item)), allowed) << item << " to " << folder;
    }
}

} // namespace
} // namespace cratewell
