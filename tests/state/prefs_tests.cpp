#include "state/prefs.h"

#include "platform/fakes/memory_defaults.h"
#include "platform/system_paths.h"
#include "state/folder_expansion.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QMetaProperty>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace cratewell {

using namespace Qt::StringLiterals;

namespace {

Location at(const char *path)
{
    return Location::fromBytes(path);
}

// Another value of the same type.
QVariant altered(const QVariant &value)
{
    for (const QVariant &other : {QVariant(true), QVariant(false), QVariant(0.25), QVariant(u"gold"_s),
                                  QVariant::fromValue(FolderColors{{at("/v/SFX"), u"#abc"_s}}),
                                  QVariant::fromValue(LocationSet{at("/v/a.mov")}),
                                  QVariant::fromValue(LocationList{at("/v/b.wav"), at("/v/a.mov")})}) {
        if (other.metaType() == value.metaType() && other != value)
            return other;
    }
    return {};
}

class PrefsTest : public testing::Test
{
protected:
    // As the next program to start finds it.
    QVariant stored(const QMetaProperty &property)
    {
        const Prefs next(defaults, paths);
        return property.read(&next);
    }

    MemoryDefaults defaults;
    const SystemPaths paths = SystemPaths::below(at("/home/ada"));
    Prefs prefs{defaults, paths};
};

} // namespace

TEST_F(PrefsTest, EverySettingLoadsStoresResetsAndRejectsOtherTypes)
{
    const QStringList keptByReset{u"importMove"_s, u"vaultPath"_s, u"folderColors"_s, u"favorites"_s,
                                  u"recent"_s};
    const QMetaObject &description = Prefs::staticMetaObject;
    for (int i = description.propertyOffset(); i < description.propertyCount(); ++i) {
        const QMetaProperty property = description.property(i);
        if (!property.isWritable())
            continue;
        SCOPED_TRACE(property.name());
        const QString key = QString::fromLatin1(property.name());
        defaults.remove(key);
        Prefs loaded(defaults, paths);
        EXPECT_TRUE(defaults.value(key).isUndefined()) << "loading must not write";
        const QVariant initial = property.read(&loaded);
        const QVariant other = altered(initial);
        QSignalSpy changes(&loaded, property.notifySignal());
        ASSERT_TRUE(property.write(&loaded, other));
        defaults.remove(key);
        ASSERT_TRUE(property.write(&loaded, other));
        EXPECT_EQ(property.read(&loaded), other);
        EXPECT_EQ(stored(property), other) << "assigning an equal value writes too";
        EXPECT_EQ(changes.count(), 1);
        const QJsonValue::Type type = defaults.value(key).type();

        loaded.resetAll();
        EXPECT_EQ(stored(property), keptByReset.contains(key) ? other : initial);
        ASSERT_TRUE(property.reset(&loaded));
        EXPECT_EQ(stored(property), initial);

        // A number stored as text, a flag as a number, a list with a stranger in it.
        const QJsonArray list{u"/v/a.mov"_s, 7};
        const QJsonObject object{{u"/v/a.mov"_s, 7}};
        for (const QJsonValue &stranger : {QJsonValue(u"1"_s), QJsonValue(1), QJsonValue(true), QJsonValue(),
                                           QJsonValue(list), QJsonValue(object)}) {
            const bool fits = stranger.type() == type && !stranger.isArray() && !stranger.isObject();
            defaults.setValue(key, stranger);
            EXPECT_TRUE(fits || stored(property) == initial) << "stored type " << stranger.type();
        }
    }
}

TEST_F(PrefsTest, FavoritesToggleAndRecentIsNewestFirstWithoutDuplicatesAndAtMostSixty)
{
    prefs.toggleFavorite(at("/v/a.mov"));
    EXPECT_EQ(defaults.value(u"favorites"_s), QJsonArray{u"/v/a.mov"_s});
    prefs.toggleFavorite(at("/v/a.mov"));
    EXPECT_EQ(defaults.value(u"favorites"_s), QJsonArray());

    for (int i = 0; i < 61; ++i)
        prefs.noteInserted(at(qPrintable(u"/v/%1.wav"_s.arg(i))));
    EXPECT_EQ(prefs.recent().last(), at("/v/1.wav"));
    prefs.noteInserted(at("/v/30.wav"));
    EXPECT_EQ(prefs.recent().size(), 60);
    EXPECT_EQ(prefs.recent().first(), at("/v/30.wav"));
    EXPECT_EQ(prefs.recent().count(at("/v/30.wav")), 1);
}

TEST_F(PrefsTest, PathsOfAnyBytesSurviveTheStore)
{
    const Location odd = at("/v/caf\xe9 \xf0\x9f\x8e\xac.mov");
    prefs.toggleFavorite(odd);
    prefs.noteInserted(odd);
    prefs.setFolderColor(odd, u"#123456"_s);
    FolderExpansion(defaults).setExpanded(odd, false);

    const Prefs again(defaults, paths);
    EXPECT_TRUE(again.favorites().contains(odd));
    EXPECT_EQ(again.recent(), LocationList{odd});
    EXPECT_EQ(again.color(odd), QColor(0x12, 0x34, 0x56));
    EXPECT_FALSE(FolderExpansion(defaults).expanded(odd, true));
    prefs.setFolderColor(odd, {});
    EXPECT_FALSE(prefs.color(odd).isValid());
    EXPECT_EQ(defaults.value(u"folderColors"_s), QJsonObject());
}

TEST(Colors, AreReadFromHexTextsElseTheAccent)
{
    const QColor accent(0x7b, 0x5c, 0xff);
    const QColor abc(0xaa, 0xbb, 0xcc);
    const std::pair<const char *, QColor> cases[] = {
        {"  #abc\n", abc},
        {"#AAbbcc", abc},
        {"+aabbcc", abc},
        {"77aabbcc", abc}, // only the last six digits count
        {"", accent},
        {"0xaabbcc", accent},
        {"\xd9\xa1\xd9\xa2\xd9\xa3\xd9\xa4\xd9\xa5\xd9\xa6", accent}, // digits of another script
        {"10000000000aabbcc", accent},                                // more than 64 bits
    };
    for (const auto &[text, color] : cases)
        EXPECT_EQ(colorFromHex(QString::fromUtf8(text)), color) << text;
    EXPECT_EQ(hexFromColor(QColor(0x7b, 0x5c, 0xff)), u"#7B5CFF"_s);
    EXPECT_EQ(hexFromColor(QColor::fromRgbF(0.999f, 0.5f, 0.0f)), u"#FE7F00"_s) << "channels are cut off";
    EXPECT_EQ(hexFromColor(QColor()), u"#FFFFFF"_s);
}

} // namespace cratewell
