#pragma once

#include "platform/appearance.h"
#include "platform/mac/command_line_tools.h"

namespace cratewell {

// Appearance as `defaults read` reports it, asked again whenever the system's palette changes or the program
// comes to the front.
class DefaultReadAppearance final : public Appearance
{
    Q_OBJECT
public:
    explicit DefaultReadAppearance(const Location &toolsFolder = CommandLineTools::systemFolder());

    bool dark() const override { return m_dark; }
    bool reducedMotion() const override { return m_reducedMotion; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void ask();
    void set(bool &value, bool now);

    CommandLineTools m_tools;
    bool m_dark = true;
    bool m_reducedMotion = false;
};

} // namespace cratewell
