#pragma once

#include "platform/defaults.h"
#include "platform/location.h"

#include <QColor>
#include <QMap>
#include <QObject>
#include <QSet>
#include <QStringList>

namespace cratewell {

struct SystemPaths;

// Stored colours: an optional "#" and 3 or 6 hex digits when read; anything else is the default accent.
QColor colorFromHex(const QString &text);
// "#RRGGBB", upper case; channels truncate toward zero.
QString hexFromColor(const QColor &color);

// Every setting of the program, read once and written through to the store at each change. Main thread. Text
// values are kept as stored, also unknown ones: each consumer has its fallback.
class Prefs : public QObject
{
    Q_OBJECT
    // The implementation declares one macro line per setting here; see the table of settings for names, types
    // and defaults: property `name`, getter name(), setter setName(value), signal nameChanged().
public:
    Prefs(Defaults &defaults, const SystemPaths &paths);

    // Light, dark or whatever the system says.
    enum class ColorScheme { System, Light, Dark };
    Q_ENUM(ColorScheme)
    ColorScheme colorScheme() const;

    void toggleFavorite(const Location &asset);
    void noteInserted(const Location &asset);
    // Invalid when the folder has none.
    QColor color(const Location &folder) const;
    void resetAll();
};

} // namespace cratewell
