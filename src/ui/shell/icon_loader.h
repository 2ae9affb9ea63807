#pragma once

#include "ui/shell/icon_renderer.h"

#include <QObject>
#include <QThreadPool>
#include <atomic>
#include <functional>

namespace cratewell {

// Draws the program's icon on threads of its own, because the glow takes longer than a frame. Main thread.
class IconLoader : public QObject
{
    Q_OBJECT
public:
    // Called on any thread.
    using Render = std::function<QImage(IconStyle)>;

    explicit IconLoader(Render render);
    ~IconLoader() override;

    // Of several requests only the newest is answered.
    void request(IconStyle style);

Q_SIGNALS:
    void ready(const QImage &icon);

private:
    const Render m_render;
    std::atomic<int> m_newest = 0;
    QThreadPool m_pool;
};

} // namespace cratewell
