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

// One row of the table of settings: what the store is to hold by default, another value of its type, and
// whether a reset brings the default back.
struct Setting
{
    const char *name;
    QJsonValue initial;
    QJsonValue other;
    bool reset = true;
};

QJsonValue text(const char *value)
{
    return QString::fromUtf8(value);
}

const std::vector<Setting> &settings()
{
    static const std::vector<Setting> all{
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
    return all;
}

class PrefsTest : public testing::Test
{
protected:
    QMetaProperty property(const Setting &setting) const
    {
        return Prefs::staticMetaObject.property(Prefs::staticMetaObject.indexOfProperty(setting.name));
    }
    QString key(const Setting &setting) const { return QString::fromLatin1(setting.name); }
    QJsonValue stored(const char *name) const { return defaults.value(QString::fromLatin1(name)); }

    MemoryDefaults defaults;
    const SystemPaths paths = SystemPaths::below(at("/home/ada"));
};

} // namespace

TEST_F(PrefsTest, EverySettingLoadsStoresResetsAndRejectsOtherTypes)
{
    QSet<QByteArray> unseen;
    for (int i = Prefs::staticMetaObject.propertyOffset(); i < Prefs::staticMetaObject.propertyCount(); ++i) {
        if (Prefs::staticMetaObject.property(i).isWritable())
            unseen.insert(Prefs::staticMetaObject.property(i).name());
    }

    for (const Setting &setting : settings()) {
        SCOPED_TRACE(setting.name);
        EXPECT_TRUE(unseen.remove(setting.name));
        defaults.remove(key(setting));
        Prefs empty(defaults, paths);
        const QVariant initial = property(setting).read(&empty);
        EXPECT_TRUE(defaults.value(key(setting)).isUndefined()) << "loading must not write";

        defaults.setValue(key(setting), setting.other);
        Prefs loaded(defaults, paths);
        const QVariant other = property(setting).read(&loaded);
        EXPECT_NE(other, initial);

        QSignalSpy changes(&empty, property(setting).notifySignal());
        ASSERT_TRUE(property(setting).write(&empty, other));
        EXPECT_EQ(property(setting).read(&empty), other);
        EXPECT_EQ(stored(setting.name), setting.other);
        defaults.remove(key(setting));
        ASSERT_TRUE(property(setting).write(&empty, other));
        EXPECT_EQ(stored(setting.name), setting.other) << "assigning an equal value writes too";
        EXPECT_EQ(changes.count(), 1);

        empty.resetAll();
        EXPECT_EQ(property(setting).read(&empty), setting.reset ? initial : other);
        EXPECT_EQ(stored(setting.name), setting.reset ? setting.initial : setting.other);
        ASSERT_TRUE(property(setting).reset(&empty));
        EXPECT_EQ(stored(setting.name), setting.initial);

        // A number stored as text, a flag as a number, a list with a stranger in it.
        const QJsonValue strangers[] = {text("1"),
                                        1,
                                        true,
                                        QJsonValue(),
                                        QJsonArray{text("/v/a.mov"), 7},
                                        QJsonObject{{QStringLiteral("/v/a.mov"), 7}}};
        for (const QJsonValue &stranger : strangers) {
            if (stranger.type() == setting.initial.type() && !stranger.isArray() && !stranger.isObject())
                continue;
            defaults.setValue(key(setting), stranger);
            Prefs careful(defaults, paths);
            EXPECT_EQ(property(setting).read(&careful), initial) << "stored type " << stranger.type();
        }
        defaults.remove(key(setting));
    }
    EXPECT_TRUE(unseen.isEmpty()) << "settings without a row: " << unseen.size();
}

TEST_F(PrefsTest, FavoritesToggleAndAreStoredEachTime)
{
    Prefs prefs(defaults, paths);
    prefs.toggleFavorite(at("/v/a.mov"));
    EXPECT_EQ(stored("favorites"), QJsonArray{text("/v/a.mov")});
    prefs.toggleFavorite(at("/v/a.mov"));
    EXPECT_EQ(stored("favorites"), QJsonArray());
}

TEST_F(PrefsTest, RecentIsNewestFirstWithoutDuplicatesAndAtMostSixty)
{
    Prefs prefs(defaults, paths);
    for (int i = 0; i < 61; ++i)
        prefs.noteInserted(at(qPrintable(QStringLiteral("/v/%1.wav").arg(i))));
    EXPECT_EQ(prefs.recent().size(), 60);
    EXPECT_EQ(prefs.recent().first(), at("/v/60.wav"));
    EXPECT_EQ(prefs.recent().last(), at("/v/1.wav"));

    prefs.noteInserted(at("/v/30.wav"));
    EXPECT_EQ(prefs.recent().size(), 60);
    EXPECT_EQ(prefs.recent().first(), at("/v/30.wav"));
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

TEST_F(PrefsTest, FolderColorsAreSetReadAndTakenAway)
{
    Prefs prefs(defaults, paths);
    EXPECT_FALSE(prefs.color(at("/v/SFX")).isValid());
    prefs.setFolderColor(at("/v/SFX"), QStringLiteral("not a color"));
    EXPECT_EQ(prefs.color(at("/v/SFX")), prefs.accent());
    prefs.setFolderColor(at("/v/SFX"), {});
    EXPECT_FALSE(prefs.color(at("/v/SFX")).isValid());
    EXPECT_EQ(stored("folderColors"), QJsonObject());
}

TEST_F(PrefsTest, AppearanceGivesTheColorScheme)
{
    Prefs prefs(defaults, paths);
    EXPECT_EQ(prefs.colorScheme(), Prefs::ColorScheme::Dark);
    prefs.setAppearance(QStringLiteral("light"));
    EXPECT_EQ(prefs.colorScheme(), Prefs::ColorScheme::Light);
    for (const char *other : {"system", "Light", ""}) {
        prefs.setAppearance(QString::fromLatin1(other));
        EXPECT_EQ(prefs.colorScheme(), Prefs::ColorScheme::System) << other;
    }
}

TEST_F(PrefsTest, FolderExpansionTellsNeverSetFromClosed)
{
    FolderExpansion expansion(defaults);
    EXPECT_TRUE(expansion.expanded(at("/v/SFX"), true));
    EXPECT_FALSE(expansion.expanded(at("/v/SFX"), false));
    expansion.setExpanded(at("/v/SFX"), false);
    EXPECT_FALSE(expansion.expanded(at("/v/SFX"), true));
    EXPECT_EQ(stored("expanded./v/SFX"), QJsonValue(false));
}

} // namespace cratewell
