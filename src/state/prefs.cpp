#include "state/prefs.h"

#include "platform/system_paths.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QMetaProperty>
#include <algorithm>
#include <array>

namespace cratewell {

namespace {

constexpr qsizetype recentLimit = 60;

// What the user collected or chose once, which a reset of the looks leaves alone.
constexpr std::array keptByReset{"importMove", "vaultPath", "folderColors", "favorites", "recent"};

QJsonValue toJson(bool value)
{
    return value;
}

QJsonValue toJson(double value)
{
    return value;
}

QJsonValue toJson(const QString &value)
{
    return value;
}

template<typename Locations> QJsonValue toJsonArray(const Locations &locations)
{
    QJsonArray array;
    for (const Location &location : locations)
        array.append(location.text());
    return array;
}

QJsonValue toJson(const LocationSet &value)
{
    return toJsonArray(value);
}

QJsonValue toJson(const LocationList &value)
{
    return toJsonArray(value);
}

QJsonValue toJson(const FolderColors &value)
{
    QJsonObject object;
    for (auto color = value.begin(); color != value.end(); ++color)
        object.insert(color.key().text(), color.value());
    return object;
}

template<typename T> std::optional<T> fromJson(const QJsonValue &value);

template<> std::optional<bool> fromJson(const QJsonValue &value)
{
    return value.isBool() ? std::optional(value.toBool()) : std::nullopt;
}

template<> std::optional<double> fromJson(const QJsonValue &value)
{
    return value.isDouble() ? std::optional(value.toDouble()) : std::nullopt;
}

template<> std::optional<QString> fromJson(const QJsonValue &value)
{
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

template<> std::optional<LocationList> fromJson(const QJsonValue &value)
{
    if (!value.isArray())
        return {};
    LocationList list;
    const QJsonArray array = value.toArray();
    for (const QJsonValue &entry : array) {
        if (!entry.isString())
            return {};
        if (const Location location = Location::fromText(entry.toString()); !location.isEmpty())
            list.append(location);
    }
    return list;
}

template<> std::optional<LocationSet> fromJson(const QJsonValue &value)
{
    const auto list = fromJson<LocationList>(value);
    return list ? std::optional(LocationSet(list->begin(), list->end())) : std::nullopt;
}

template<> std::optional<FolderColors> fromJson(const QJsonValue &value)
{
    if (!value.isObject())
        return {};
    FolderColors colors;
    const QJsonObject object = value.toObject();
    for (auto entry = object.begin(); entry != object.end(); ++entry) {
        if (!entry.value().isString())
            return {};
        if (const Location folder = Location::fromText(entry.key()); !folder.isEmpty())
            colors.insert(folder, entry.value().toString());
    }
    return colors;
}

} // namespace

template<typename T> T Prefs::stored(const QString &key, const T &fallback) const
{
    return fromJson<T>(m_defaults.value(key)).value_or(fallback);
}

template<typename T> bool Prefs::assign(T &member, const QString &key, const T &value)
{
    const bool differs = member != value;
    member = value;
    m_defaults.setValue(key, toJson(member));
    return differs;
}

template bool Prefs::assign(bool &, const QString &, const bool &);
template bool Prefs::assign(double &, const QString &, const double &);
template bool Prefs::assign(QString &, const QString &, const QString &);
template bool Prefs::assign(FolderColors &, const QString &, const FolderColors &);
template bool Prefs::assign(LocationSet &, const QString &, const LocationSet &);
template bool Prefs::assign(LocationList &, const QString &, const LocationList &);

Prefs::Prefs(Defaults &defaults, const SystemPaths &paths)
    : m_defaults(defaults), m_defaultVaultPath(paths.defaultVault().text())
{
}

Prefs::ColorScheme Prefs::colorScheme() const
{
    if (m_appearance == QLatin1String("light"))
        return ColorScheme::Light;
    return m_appearance == QLatin1String("dark") ? ColorScheme::Dark : ColorScheme::System;
}

void Prefs::toggleFavorite(const Location &asset)
{
    LocationSet changed = m_favorites;
    if (!changed.remove(asset))
        changed.insert(asset);
    setFavorites(changed);
}

void Prefs::noteInserted(const Location &asset)
{
    LocationList changed = m_recent;
    changed.removeAll(asset);
    changed.prepend(asset);
    if (changed.size() > recentLimit)
        changed.resize(recentLimit);
    setRecent(changed);
}

QColor Prefs::color(const Location &folder) const
{
    const auto found = m_folderColors.constFind(folder);
    return found == m_folderColors.constEnd() ? QColor() : colorFromHex(*found);
}

void Prefs::setFolderColor(const Location &folder, const QString &hex)
{
    FolderColors changed = m_folderColors;
    if (hex.isEmpty())
        changed.remove(folder);
    else
        changed.insert(folder, hex);
    setFolderColors(changed);
}

void Prefs::followRename(const Location &from, const Location &to)
{
    FolderColors changed = m_folderColors;
    const QString hex = changed.take(from);
    if (hex.isNull())
        return;
    changed.insert(to, hex);
    setFolderColors(changed);
}

void Prefs::resetAll()
{
    const QMetaObject &description = staticMetaObject;
    for (int i = description.propertyOffset(); i < description.propertyCount(); ++i) {
        const QMetaProperty setting = description.property(i);
        const bool kept = std::any_of(keptByReset.begin(), keptByReset.end(),
                                      [&](const char *name) { return qstrcmp(name, setting.name()) == 0; });
        if (setting.isResettable() && !kept)
            setting.reset(this);
    }
}

} // namespace cratewell
