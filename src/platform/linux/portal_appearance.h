#pragma once

#include "platform/appearance.h"

#include <QDBusConnection>
#include <QDBusVariant>

namespace cratewell {

// Appearance as the desktop portal reports it. Asks without waiting: until the answer is there, and without a
// portal, everything is dark and moves.
class PortalAppearance final : public Appearance
{
    Q_OBJECT
public:
    explicit PortalAppearance(QDBusConnection bus);

    bool dark() const override { return m_colorScheme != Light; }
    bool reducedMotion() const override { return m_reduceMotion || !m_animations; }

private Q_SLOTS:
    void settingChanged(const QString &group, const QString &key, const QDBusVariant &value);

private:
    // The portal's numbers for color-scheme; 0 is no preference.
    static constexpr uint Light = 2;

    void askAll();
    void ask(const QString &group, const QString &key);
    void take(const QString &group, const QString &key, QVariant value);

    QDBusConnection m_bus;
    uint m_colorScheme = 0;
    bool m_reduceMotion = false;
    bool m_animations = true;
};

} // namespace cratewell
