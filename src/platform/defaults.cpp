#include "platform/defaults.h"

namespace cratewell {

std::optional<bool> Defaults::boolean(const QString &key) const
{
    const QJsonValue stored = value(key);
    return stored.isBool() ? std::optional(stored.toBool()) : std::nullopt;
}

std::optional<double> Defaults::number(const QString &key) const
{
    const QJsonValue stored = value(key);
    return stored.isDouble() ? std::optional(stored.toDouble()) : std::nullopt;
}

std::optional<QString> Defaults::string(const QString &key) const
{
    const QJsonValue stored = value(key);
    return stored.isString() ? std::optional(stored.toString()) : std::nullopt;
}

} // namespace cratewell
