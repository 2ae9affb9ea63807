#pragma once

#include "platform/appearance.h"

namespace cratewell {

class FakeAppearance final : public Appearance
{
public:
    bool dark() const override { return m_dark; }
    bool reducedMotion() const override { return m_reducedMotion; }

    void setDark(bool dark)
    {
        m_dark = dark;
        Q_EMIT changed();
    }
    void setReducedMotion(bool reduced)
    {
        m_reducedMotion = reduced;
        Q_EMIT changed();
    }

private:
    bool m_dark = true;
    bool m_reducedMotion = false;
};

} // namespace cratewell
