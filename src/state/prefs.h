#pragma once

#include "platform/defaults.h"
#include "platform/location.h"
#include "state/colors.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QSet>

namespace cratewell {

struct SystemPaths;

using FolderColors = QHash<Location, QString>;
using LocationSet = QSet<Location>;
using LocationList = QList<Location>;

// One setting: a property that is loaded once, written to the store by each assignment and announced when it
// differs. What the store holds in another type is the default.
#define CRATEWELL_SETTING(Type, name, Name, fallback)                                                        \
    Q_PROPERTY(Type name READ name WRITE set##Name RESET reset##Name NOTIFY name##Changed FINAL)             \
public:                                                                                                      \
    Type name() const                                                                                        \
    {                                                                                                        \
        return m_##name;                                                                                     \
    }                                                                                                        \
    void set##Name(const Type &value)                                                                        \
    {                                                                                                        \
        if (assign(m_##name, QStringLiteral(#name), value))                                                  \
            Q_EMIT                                                                                           \
        name##Changed();                                                                                     \
    }                                                                                                        \
    void reset##Name()                                                                                       \
    {                                                                                                        \
        set##Name(fallback);                                                                                 \
    }                                                                                                        \
    Q_SIGNAL void name##Changed();                                                                           \
                                                                                                             \
private:                                                                                                     \
    Type m_##name = stored<Type>(QStringLiteral(#name), fallback);

// Every setting of the program, read once and written through to the store at each change. Main thread. Text
// values are kept as stored, also unknown ones: each consumer has its fallback.
class Prefs : public QObject
{
    Q_OBJECT
    Defaults &m_defaults;
    const QString m_defaultVaultPath;

    CRATEWELL_SETTING(QString, appearance, Appearance, QStringLiteral("dark"))
    CRATEWELL_SETTING(QString, accentHex, AccentHex, defaultAccentHex)
    CRATEWELL_SETTING(QString, background, Background, QStringLiteral("aurora"))
    CRATEWELL_SETTING(double, bgIntensity, BgIntensity, 0.7)
    CRATEWELL_SETTING(QString, iconStyle, IconStyle, QStringLiteral("chrome"))
    CRATEWELL_SETTING(bool, glassSidebar, GlassSidebar, true)
    CRATEWELL_SETTING(bool, gradientTiles, GradientTiles, true)
    CRATEWELL_SETTING(double, cardSize, CardSize, 200)
    CRATEWELL_SETTING(double, cornerRadius, CornerRadius, 14)
    CRATEWELL_SETTING(bool, showNames, ShowNames, true)
    CRATEWELL_SETTING(bool, showBadges, ShowBadges, true)
    CRATEWELL_SETTING(bool, hoverScrub, HoverScrub, true)
    CRATEWELL_SETTING(bool, showCounts, ShowCounts, true)
    CRATEWELL_SETTING(QString, waveStyle, WaveStyle, QStringLiteral("mirror"))
    CRATEWELL_SETTING(QString, blendMode, BlendMode, QStringLiteral("screen"))
    CRATEWELL_SETTING(QString, previewStill, PreviewStill, QString())
    CRATEWELL_SETTING(bool, autoplay, Autoplay, true)
    CRATEWELL_SETTING(bool, loopPreview, LoopPreview, true)
    CRATEWELL_SETTING(double, previewVolume, PreviewVolume, 0.8)
    CRATEWELL_SETTING(QString, insertTarget, InsertTarget, QStringLiteral("auto"))
    CRATEWELL_SETTING(QString, overlayTrack, OverlayTrack, QStringLiteral("newTop"))
    CRATEWELL_SETTING(bool, applyBlendOnInsert, ApplyBlendOnInsert, true)
    CRATEWELL_SETTING(bool, importMove, ImportMove, false)
    CRATEWELL_SETTING(bool, pinned, Pinned, false)
    CRATEWELL_SETTING(QString, vaultPath, VaultPath, m_defaultVaultPath)
    CRATEWELL_SETTING(cratewell::FolderColors, folderColors, FolderColors, cratewell::FolderColors())
    CRATEWELL_SETTING(cratewell::LocationSet, favorites, Favorites, cratewell::LocationSet())
    CRATEWELL_SETTING(cratewell::LocationList, recent, Recent, cratewell::LocationList())

    Q_PROPERTY(QColor accent READ accent NOTIFY accentHexChanged FINAL)
    Q_PROPERTY(ColorScheme colorScheme READ colorScheme NOTIFY appearanceChanged FINAL)
public:
    Prefs(Defaults &defaults, const SystemPaths &paths);

    // Light, dark or whatever the system says.
    enum class ColorScheme { System, Light, Dark };
    Q_ENUM(ColorScheme)
    ColorScheme colorScheme() const;
    QColor accent() const { return colorFromHex(m_accentHex); }

    void toggleFavorite(const cratewell::Location &asset);
    // Puts the asset first among the recent ones, of which the newest 60 are kept.
    void noteInserted(const Location &asset);
    // Invalid when the folder has none.
    Q_INVOKABLE QColor color(const cratewell::Location &folder) const;
    // An empty text takes the folder's color away.
    Q_INVOKABLE void setFolderColor(const cratewell::Location &folder, const QString &hex);
    // A renamed folder keeps its color, also under the same name.
    void followRename(const Location &from, const Location &to);
    // Gives the look, the grid and the previews their defaults; keeps what the user collected.
    Q_INVOKABLE void resetAll();

private:
    template<typename T> T stored(const QString &key, const T &fallback) const;
    template<typename T> bool assign(T &member, const QString &key, const T &value);
};

#undef CRATEWELL_SETTING

} // namespace cratewell

Q_DECLARE_METATYPE(cratewell::FolderColors)
