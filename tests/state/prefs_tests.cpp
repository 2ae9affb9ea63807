#include "state/prefs.h"

#include "platform/fakes/memory_defaults.h"
#include "platform/system_paths.h"
#include "state/folder_expansion.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QMetaProperty>
#include <QSet>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace cratewell {

namespace {

Location at(const char *path)
{
    return Location::fromBytes(path);
}

QJsonValue text(const char *value)
{
    return QString::fromUtf8(value);
}

// What the store is to hold by default, another value of its type, and whether a reset brings the default
// back.
const struct Setting
{
    const char *name;
    QJsonValue initial;
    QJsonValue other;
    bool reset = true;
} settings[] = {
    {"appearance", text("dark"), text("light")},
    {"accentHex", text("#7B5CFF"), text("#2FD6FF")},
    {"background", text("aurora"), text("a name nobody knows")},
    {"bgIntensity", 0.7, 0.25},
    {"iconStyle", text("chrome"), text("gold")},
    {"glassSidebar", true, false},
    {"gradientTiles", true, false},
    {"cardSize", 200, 340},
    {"cornerRadius", 14, 0},
    {"showNames", true, false},
    {"showBadges", true, false},
    {"hoverScrub", true, false},
    {"showCounts", true, false},
    {"waveStyle", text("mirror"), text("bars")},
    {"blendMode", text("screen"), text("softLight")},
    {"previewStill", text(""), text("/footage/frame.png")},
    {"autoplay", true, false},
    {"loopPreview", true, false},
    {"previewVolume", 0.8, 0},
    {"insertTarget", text("auto"), text("premiere")},
    {"overlayTrack", text("newTop"), text("free")},
    {"applyBlendOnInsert", true, false},
    {"importMove", false, true, false},
    {"pinned", false, true},
    {"vaultPath", text("/home/ada/Movies/Cratewell Vault"), text("/mnt/vault"), false},
    {"folderColors", QJsonObject(), QJsonObject{{QStringLiteral("/v/SFX/Hits"), text("#abc")}}, false},
    {"favorites", QJsonArray(), QJsonArray{text("/v/a.mov")}, false},
    {"recent", QJsonArray(), QJsonArray{text("/v/b.wav"), text("/v/a.mov")}, false},
};

class PrefsTest : public testing::Test
{
protected:
    QJsonValue stored(const char *name) const { return defaults.value(QString::fromLatin1(name)); }

    MemoryDefaults defaults;
    const SystemPaths paths = SystemPaths::below(at("/home/ada"));
};

} // namespace

TEST_F(PrefsTest, EverySettingLoadsStoresResetsAndRejectsOtherTypes)
{
    const QMetaObject &description = Prefs::staticMetaObject;
    QSet<QByteArray> unseen;
    for (int i = description.propertyOffset(); i < description.propertyCount(); ++i) {
        if (description.property(i).isWritable())
            unseen.insert(description.property(i).name());
    }
    for (const Setting &setting : settings) {
        SCOPED_TRACE(setting.name);
        EXPECT_TRUE(unseen.remove(setting.name));
        const QMetaProperty property = description.property(description.indexOfProperty(setting.name));
        const QString key = QString::fromLatin1(setting.name);
        defaults.remove(key);
        Prefs empty(defaults, paths);
        const QVariant initial = property.read(&empty);
        EXPECT_TRUE(defaults.value(key).isUndefined()) << "loading must not write";

        defaults.setValue(key, setting.other);
        Prefs loaded(defaults, paths);
        const QVariant other = property.read(&loaded);
        EXPECT_NE(other, initial);

        QSignalSpy changes(&empty, property.notifySignal());
        ASSERT_TRUE(property.write(&empty, other));
        EXPECT_EQ(property.read(&empty), other);
        EXPECT_EQ(stored(setting.name), setting.other);
        defaults.remove(key);
        ASSERT_TRUE(property.write(&empty, other));
        EXPECT_EQ(stored(setting.name), setting.other) << "assigning an equal value writes too";
        EXPECT_EQ(changes.count(), 1);

        empty.resetAll();
        EXPECT_EQ(property.read(&empty), setting.reset ? initial : other);
        EXPECT_EQ(stored(setting.name), setting.reset ? setting.initial : setting.other);
        ASSERT_TRUE(property.reset(&empty));
        EXPECT_EQ(stored(setting.name), setting.initial);

        // A number stored as text, a flag as a number, a list with a stranger in it.
        const QJsonArray list{text("/v/a.mov"), 7};
        const QJsonObject object{{QStringLiteral("/v/a.mov"), 7}};
        const QJsonValue strangers[] = {text("1"), 1, true, QJsonValue(), list, object};
        for (const QJsonValue &stranger : strangers) {
            if (stranger.type() == setting.initial.type() && !stranger.isArray() && !stranger.isObject())
                continue;
            defaults.setValue(key, stranger);
            Prefs careful(defaults, paths);
            EXPECT_EQ(property.read(&careful), initial) << "stored type " << stranger.type();
        }
        defaults.remove(key);
    }
    EXPECT_TRUE(unseen.isEmpty()) << "settings without a row: " << unseen.size();
}

TEST_F(PrefsTest, FavoritesToggleAndRecentIsNewestFirstWithoutDuplicatesAndAtMostSixty)
{
    Prefs prefs(defaults, paths);
    prefs.toggleFavorite(at("/v/a.mov"));
    EXPECT_EQ(stored("favorites"), QJsonArray{text("/v/a.mov")});
    prefs.toggleFavorite(at("/v/a.mov"));
    EXPECT_EQ(stored("favorites"), QJsonArray());

    for (int i = 0; i < 61; ++i)
        prefs.noteInserted(at(qPrintable(QStringLiteral("/v/%1.wav").arg(i))));
    EXPECT_EQ(prefs.recent().last(), at("/v/1.wav"));
    prefs.noteInserted(at("/v/30.wav"));
    EXPECT_EQ(prefs.recent().size(), 60);
    EXPECT_EQ(prefs.recent().first(), at("/v/30.wav"));
    EXPECT_EQ(prefs.recent().at(1), at("/v/60.wav"));
    EXPECT_EQ(prefs.recent().count(at("/v/30.wav")), 1);
    EXPECT_EQ(Prefs(defaults, paths).recent(), prefs.recent());
}

TEST_F(PrefsTest, PathsOfAnyBytesSurviveTheStore)
{
    const Location odd = at("/v/caf\xe9 \xf0\x9f\x8e\xac.mov");
    Prefs prefs(defaults, paths);
    prefs.toggleFavorite(odd);
    prefs.noteInserted(odd);
    prefs.setFolderColor(odd, QStringLiteral("#123456"));

    const Prefs again(defaults, paths);
    EXPECT_TRUE(again.favorites().contains(odd));
    EXPECT_EQ(again.recent(), LocationList{odd});
    EXPECT_EQ(again.color(odd), QColor(0x12, 0x34, 0x56));
}

TEST_F(PrefsTest, FolderColorsAndExpansionAreSetReadAndTakenAway)
{
    const Location sfx = at("/v/SFX");
    Prefs prefs(defaults, paths);
    EXPECT_FALSE(prefs.color(sfx).isValid());
    prefs.setFolderColor(sfx, QStringLiteral("not a color"));
    EXPECT_EQ(prefs.color(sfx), prefs.accent());
    prefs.setFolderColor(sfx, {});
    EXPECT_FALSE(prefs.color(sfx).isValid());
    EXPECT_EQ(stored("folderColors"), QJsonObject());

    FolderExpansion expansion(defaults);
    EXPECT_TRUE(expansion.expanded(sfx, true));
    EXPECT_FALSE(expansion.expanded(sfx, false));
    expansion.setExpanded(sfx, false);
    EXPECT_FALSE(expansion.expanded(sfx, true));
    EXPECT_EQ(stored("expanded./v/SFX"), QJsonValue(false));
}

TEST_F(PrefsTest, AppearanceGivesTheColorScheme)
{
    using enum Prefs::ColorScheme;
    const std::pair<const char *, Prefs::ColorScheme> cases[] = {
        {"dark", Dark}, {"light", Light}, {"system", System}, {"Light", System}, {"", System}};
    Prefs prefs(defaults, paths);
    for (const auto &[appearance, scheme] : cases) {
        prefs.setAppearance(QString::fromLatin1(appearance));
        EXPECT_EQ(prefs.colorScheme(), scheme) << appearance;
    }
}

} // namespace cratewell
