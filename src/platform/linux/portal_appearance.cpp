#include "platform/linux/portal_appearance.h"

#include "platform/linux/portal_names.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>

namespace cratewell {

using namespace Qt::StringLiterals;

namespace {

const QString appearanceGroup = u"org.freedesktop.appearance"_s;
const QString colorSchemeKey = u"color-scheme"_s;
const QString reducedMotionKey = u"reduced-motion"_s;
// Older desktops offer reduced motion only under a name of their own.
const QString gnomeGroup = u"org.gnome.desktop.interface"_s;
const QString animationsKey = u"enable-animations"_s;

} // namespace

PortalAppearance::PortalAppearance(QDBusConnection bus) : m_bus(std::move(bus))
{
    if (!m_bus.isConnected())
        return;
    // The bus looks the types of a slot up by name, and this one has no name before it was registered.
    qRegisterMetaType<QDBusVariant>();
    m_bus.connect(portal::service(), portal::path(), portal::settings(), u"SettingChanged"_s, this,
                  SLOT(settingChanged(QString, QString, QDBusVariant)));
    auto *watcher =
        new QDBusServiceWatcher(portal::service(), m_bus, QDBusServiceWatcher::WatchForRegistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceRegistered, this, &PortalAppearance::askAll);
    askAll();
}

void PortalAppearance::askAll()
{
    ask(appearanceGroup, colorSchemeKey);
    ask(appearanceGroup, reducedMotionKey);
    ask(gnomeGroup, animationsKey);
}

void PortalAppearance::ask(const QString &group, const QString &key)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(portal::service(), portal::path(), portal::settings(), u"Read"_s);
    call << group << key;
    auto *answer = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, group, key, answer] {
        const QDBusPendingReply<QDBusVariant> reply = *answer;
        if (reply.isValid())
            take(group, key, reply.value().variant());
        answer->deleteLater();
    });
}

void PortalAppearance::settingChanged(const QString &group, const QString &key, const QDBusVariant &value)
{
    take(group, key, value.variant());
}

void PortalAppearance::take(const QString &group, const QString &key, QVariant value)
{
    while (value.metaType() == QMetaType::fromType<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    const bool wasDark = dark();
    const bool wasReduced = reducedMotion();
    const bool isNumber = value.metaType() == QMetaType::fromType<uint>();
    if (group == appearanceGroup && key == colorSchemeKey && isNumber)
        m_colorScheme = value.toUInt();
    else if (group == appearanceGroup && key == reducedMotionKey && isNumber)
        m_reduceMotion = value.toUInt() == 1;
    else if (group == gnomeGroup && key == animationsKey && value.metaType() == QMetaType::fromType<bool>())
        m_animations = value.toBool();
    if (wasDark != dark() || wasReduced != reducedMotion())
        Q_EMIT changed();
}

} // namespace cratewell
