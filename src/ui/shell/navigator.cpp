#include "ui/shell/navigator.h"

#include "state/app_state.h"
#include "ui/shell/ui_engine.h"

namespace cratewell {

static_assert(int(Navigator::Trash) == int(Scope::Kind::Trash) &&
              int(Navigator::Folder) == int(Scope::Kind::Folder));

Navigator::Navigator(const UiContext &context, QObject *parent) : QObject(parent), m_context(context)
{
    connect(&context.state, &AppState::scopeChanged, this, &Navigator::placeChanged);
    connect(&context.state, &AppState::sortChanged, this, &Navigator::orderChanged);
}

Navigator *Navigator::create(QQmlEngine *engine, QJSEngine *)
{
    return new Navigator(UiEngine::contextOf(engine));
}

Navigator::Place Navigator::place() const
{
    return Place(m_context.state.scope().kind());
}

QString Navigator::folder() const
{
    return m_context.state.scope().folder().text();
}

QString Navigator::page() const
{
    return m_context.state.scope().page();
}

int Navigator::order() const
{
    return int(m_context.state.sort());
}

QStringList Navigator::orderLabels() const
{
    QStringList labels;
    for (const AssetOrderRow &row : assetOrders)
        labels += QString::fromLatin1(row.label);
    return labels;
}

void Navigator::setOrder(int order)
{
    if (order >= 0 && size_t(order) < assetOrders.size())
        m_context.state.setSort(AssetOrder(order));
}

void Navigator::show(Place place)
{
    m_context.state.setScope(Scope::of(Scope::Kind(place)));
}

void Navigator::showFolder(const Location &folder)
{
    m_context.state.setScope(Scope::inFolder(folder));
}

void Navigator::showPlugin(const QString &page)
{
    m_context.state.setScope(Scope::plugin(page));
}

} // namespace cratewell
