#include <QDrag>
#include <QDropEvent>
#include <QGuiApplication>
#include <QMimeData>
#include <QMouseEvent>
#include <QWindow>

#include <cstdio>
#include <utility>

namespace {

// Another program that takes and gives files. Says each file of a drop on a line, then the action; a drag
// that begins on it carries the files it was started with.
class Partner : public QWindow
{
public:
    explicit Partner(const QStringList &files)
    {
        for (const QString &file : files)
            m_files.append(QUrl::fromLocalFile(file));
    }

protected:
    bool event(QEvent *event) override
    {
        if (event->type() == QEvent::DragEnter || event->type() == QEvent::DragMove)
            static_cast<QDropEvent *>(event)->acceptProposedAction();
        else if (event->type() == QEvent::Drop)
            take(*static_cast<QDropEvent *>(event));
        else
            return QWindow::event(event);
        return true;
    }
    void mouseMoveEvent(QMouseEvent *move) override
    {
        if (!(move->buttons() & Qt::LeftButton) || m_files.isEmpty())
            return;
        auto *data = new QMimeData;
        data->setUrls(std::exchange(m_files, {}));
        auto *drag = new QDrag(this);
        drag->setMimeData(data);
        drag->exec(Qt::CopyAction | Qt::MoveAction, Qt::MoveAction);
    }

private:
    static void take(QDropEvent &drop)
    {
        for (const QUrl &url : drop.mimeData()->urls())
            std::puts(url.toEncoded().constData());
        std::puts(drop.possibleActions() == Qt::CopyAction ? "copy" : "other");
        drop.acceptProposedAction();
    }

    QList<QUrl> m_files;
};

} // namespace

int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    Partner window(QGuiApplication::arguments().sliced(1));
    window.setFlags(Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    window.setGeometry(1440, 60, 150, 300);
    window.show();
    while (!window.isExposed())
        QGuiApplication::processEvents(QEventLoop::WaitForMoreEvents);
    std::puts("ready");
    return QGuiApplication::exec();
}
