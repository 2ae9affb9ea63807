#include "ui/shell/icon_loader.h"

namespace cratewell {

IconLoader::IconLoader(Render render) : m_render(std::move(render))
{
    m_pool.setMaxThreadCount(2); // a newer icon does not wait for an older one
}

IconLoader::~IconLoader()
{
    m_pool.clear();
    m_pool.waitForDone();
}

void IconLoader::request(IconStyle style)
{
    const int number = ++m_newest;
    m_pool.start([this, style, number] {
        if (number != m_newest)
            return;
        const auto answer = [this, number, icon = m_render(style)] {
            if (number == m_newest)
                Q_EMIT ready(icon);
        };
        QMetaObject::invokeMethod(this, answer, Qt::QueuedConnection);
    });
}

} // namespace cratewell
