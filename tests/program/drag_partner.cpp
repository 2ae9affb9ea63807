#include <QDrag>
#include <QDropEvent>
#include <QGuiApplication>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QRasterWindow>

#include <cstdio>
#include <utility>

namespace {

// Another program that takes and gives files. Says each file of a drop on a line, then the action; a drag
// that begins on it carries the files it was started with.
class Partner : public QRasterWindow
{
public:
    explicit Partner(const QStringList &files) : m_files(files) {}

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
    void mouseMoveEvent(QMouseEvent *move) override
    {
        if (!(move->buttons() & Qt::LeftButton) || m_files.isEmpty())
            return;
        QList<QUrl> urls;
        for (const QString &file : std::exchange(m_files, {}))
            urls.append(QUrl::fromLocalFile(file));
        auto *data = new QMimeData;
        data->setUrls(urls);
        auto *drag = new QDrag(this);
        drag->setMimeData(data);
        drag->exec(Qt::CopyAction | Qt::MoveAction, Qt::MoveAction);
    }
    void paintEvent(QPaintEvent *) override
    {
        QPainter(this).fillRect(QRect({}, size()), Qt::darkGreen);
        if (!m_ready) {
            m_ready = true;
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

    QStringList m_files;
    bool m_ready = false;
};

} // namespace

int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    Partner window(QGuiApplication::arguments().sliced(1));
    window.setTitle(QStringLiteral("Partner"));
    window.setFlags(Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    window.setGeometry(1440, 60, 150, 300);
    window.show();
    return QGuiApplication::exec();
}
