#include "app/start_trace.h"

#include <QQuickItem>
#include <QQuickWindow>

#include <cstdio>
#include <memory>

namespace cratewell {

using namespace Qt::StringLiterals;

namespace {

bool showsCards(const QQuickWindow &window)
{
    const auto *grid = window.findChild<QQuickItem *>(u"assetGrid"_s);
    if (!grid || grid->property("count").toInt() == 0)
        return false;
    const auto *content = grid->property("contentItem").value<QQuickItem *>();
    constexpr int leastCards = 9;
    return content && content->childItems().size() >= leastCards;
}

} // namespace

void traceStart(QQuickWindow &window)
{
    if (!qEnvironmentVariableIsSet("CRATEWELL_TRACE_START"))
        return;
    const auto connection = std::make_shared<QMetaObject::Connection>();
    *connection = QObject::connect(&window, &QQuickWindow::frameSwapped, &window, [&window, connection] {
        if (!showsCards(window))
            return;
        QObject::disconnect(*connection);
        std::fputs("first-page\n", stderr);
    });
}

} // namespace cratewell
