#include "app/start_trace.h"

#include <QQuickItem>
#include <QQuickWindow>

#include <algorithm>
#include <cstdio>
#include <memory>

namespace cratewell {

using namespace Qt::StringLiterals;

namespace {

bool showsCards(const QQuickWindow &window)
{
    const auto *grid = window.findChild<QQuickItem *>(u"assetGrid"_s);
    if (!grid)
        return false;
    const auto items = grid->findChildren<QQuickItem *>();
    const auto view =
        std::ranges::find_if(items, [](const QQuickItem *item) { return item->inherits("QQuickGridView"); });
    if (view == items.end() || (*view)->property("count").toInt() == 0)
        return false;
    const auto *content = (*view)->property("contentItem").value<QQuickItem *>();
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
