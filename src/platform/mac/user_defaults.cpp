#include "platform/mac/user_defaults.h"

namespace cratewell {

using namespace Qt::StringLiterals;

namespace {

// To QSettings slashes part groups; our keys are flat and hold paths.
QString stored(QString key)
{
    return key.replace(u'%', u"%25"_s).replace(u'/', u"%2F"_s).replace(u'\\', u"%5C"_s);
}

} // namespace

UserDefaults::UserDefaults(std::unique_ptr<QSettings> settings) : m_settings(std::move(settings))
{
    m_settings->setFallbacksEnabled(false);
}

QJsonValue UserDefaults::value(const QString &key) const
{
    const QString name = stored(key);
    return m_settings->contains(name) ? QJsonValue::fromVariant(m_settings->value(name))
                                      : QJsonValue(QJsonValue::Undefined);
}

void UserDefaults::setValue(const QString &key, const QJsonValue &value)
{
    m_settings->setValue(stored(key), value.toVariant());
}

void UserDefaults::remove(const QString &key)
{
    m_settings->remove(stored(key));
}

void UserDefaults::drain()
{
    m_settings->sync();
}

} // namespace cratewell
