#pragma once

#include <QJsonValue>
#include <QString>
#include <QStringList>
#include <optional>

namespace cratewell {

// The per-user key/value store: flat and typed. Main thread. A key that was never written reads as Undefined,
// which differs from a stored false, 0 or "". What is set is readable at once; reaching the disk is the
// implementation's business, and failures there never surface.
class Defaults
{
public:
    virtual ~Defaults() = default;

    virtual QJsonValue value(const QString &key) const = 0;
    virtual void setValue(const QString &key, const QJsonValue &value) = 0;
    virtual void remove(const QString &key) = 0;
    // Returns when the newest state is on disk (or could not be put there).
    virtual void drain() = 0;

    // Nothing when the key is absent or holds another type: no conversions.
    std::optional<bool> boolean(const QString &key) const;
    std::optional<double> number(const QString &key) const;
    std::optional<QString> string(const QString &key) const;
};

} // namespace cratewell
