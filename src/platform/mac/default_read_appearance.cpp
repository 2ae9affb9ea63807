#include "platform/mac/default_read_appearance.h"

#include <QEvent>
#include <QGuiApplication>

namespace cratewell {

using namespace Qt::StringLiterals;

DefaultReadAppearance::DefaultReadAppearance(const Location &toolsFolder) : m_tools(toolsFolder)
{
    qGuiApp->installEventFilter(this);
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
        if (state == Qt::ApplicationActive)
            ask();
    });
    ask();
}

bool DefaultReadAppearance::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ApplicationPaletteChange)
        ask();
    return Appearance::eventFilter(watched, event);
}

void DefaultReadAppearance::ask()
{
    m_tools.run(u"defaults"_s, {u"read"_s, u"-g"_s, u"AppleInterfaceStyle"_s}, [this](const auto &outcome) {
        // A light desktop has no such key, and the tool then fails.
        if (outcome.finished)
            set(m_dark, outcome.exitCode == 0 && outcome.output.trimmed() == "Dark");
    });
    m_tools.run(u"defaults"_s, {u"read"_s, u"com.apple.universalaccess"_s, u"reduceMotion"_s},
                [this](const auto &outcome) { set(m_reducedMotion, outcome.output.trimmed() == "1"); });
}

void DefaultReadAppearance::set(bool &value, bool now)
{
    if (std::exchange(value, now) != now)
        Q_EMIT changed();
}

} // namespace cratewell
