#pragma once

#include "ui/shell/ui_context.h"

#include <QQmlApplicationEngine>

namespace cratewell {

// The engine whose views show the objects of its context. Singletons of the module take from it what they
// need in their create(). Makes the bundled fonts known as well.
class UiEngine : public QQmlApplicationEngine
{
    Q_OBJECT
public:
    explicit UiEngine(const UiContext &context);

    const UiContext &context() const { return m_context; }
    // Of an engine that is known to be one of these.
    static const UiContext &contextOf(const QQmlEngine *engine);

private:
    const UiContext m_context;
};

} // namespace cratewell
