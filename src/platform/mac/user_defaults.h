#pragma once

#include "platform/defaults.h"

#include <QSettings>
#include <memory>

namespace cratewell {

// Defaults in the system's user defaults, by way of QSettings. The format must keep the types of values, as
// the native one does there.
class UserDefaults final : public Defaults
{
public:
    explicit UserDefaults(std::unique_ptr<QSettings> settings);

    QJsonValue value(const QString &key) const override;
    void setValue(const QString &key, const QJsonValue &value) override;
    void remove(const QString &key) override;
    void drain() override;

private:
    std::unique_ptr<QSettings> m_settings;
};

} // namespace cratewell
