#include <QDropEvent>
#include <QGuiApplication>
#include <QMimeData>
#include <QPainter>
#include <QRasterWindow>

#include <cstdio>

namespace {

// Another program that takes files: says each file of a drop on a line, then the action and where it came in.
class Receiver : public QRasterWindow
{
protected:
    bool event(QEvent *event) override
    {
        switch (event->type()) {
        case QEvent::DragEnter:
        case QEvent::DragMove: {
            auto *drag = static_cast<QDropEvent *>(event);
            if (drag->mimeData()->hasFormat(QStringLiteral("text/uri-list")))
                drag->acceptProposedAction();
            return true;
        }
        case QEvent::Drop:
            take(*static_cast<QDropEvent *>(event));
            return true;
        default:
            return QRasterWindow::event(event);
        }
    }
    void paintEvent(QPaintEvent *) override
    {
        QPainter(this).fillRect(QRect({}, size()), Qt::darkGreen);
        if (!m_told) {
            m_told = true;
            std::puts("ready");
            std::fflush(stdout);
        }
    }

private:
    static void take(QDropEvent &drop)
    {
        for (const QUrl &url : drop.mimeData()->urls())
            std::puts(url.toEncoded().constData());
        std::puts(drop.proposedAction() == Qt::CopyAction && drop.possibleActions() == Qt::CopyAction
                      ? "copy"
                      : "other");
        std::fflush(stdout);
        drop.acceptProposedAction();
    }

    bool m_told = false;
};

} // namespace

int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    Receiver window;
    window.setTitle(QStringLiteral("Receiver"));
    window.setFlags(Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    window.setGeometry(1440, 60, 150, 300);
    window.show();
    return QGuiApplication::exec();
}
