#pragma once

#include "platform/defaults.h"

#include <QHash>

namespace cratewell {

// Defaults that live as long as the object. Notes every effect, oldest first.
class MemoryDefaults final : public Defaults
{
public:
    QJsonValue value(const QString &key) const override
    {
        return m_values.value(key, QJsonValue(QJsonValue::Undefined));
    }
    void setValue(const QString &key, const QJsonValue &value) override
    {
        m_log += QStringLiteral("set ") + key;
        m_values.insert(key, value);
    }
    void remove(const QString &key) override
    {
        m_log += QStringLiteral("remove ") + key;
        m_values.remove(key);
    }
    void drain() override { m_log += QStringLiteral("drain"); }

    const QHash<QString, QJsonValue> &values() const { return m_values; }
    QStringList takeLog() { return std::exchange(m_log, {}); }

private:
    QHash<QString, QJsonValue> m_values;
    QStringList m_log;
};

} // namespace cratewell
