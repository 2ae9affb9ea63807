// empty_window: the least a Qt Quick program can show, in the size of Cratewell's window. What it takes to
// start and to hold in memory is what the toolkit costs on this machine; prints "first-page" after its first
// frame.

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickWindow>

#include <cstdio>

int main(int argc, char **argv)
{
    QGuiApplication application(argc, argv);
    QQmlApplicationEngine engine;
    engine.loadData("import QtQuick\nWindow { width: 1320; height: 840; visible: true }");
    auto *window = qobject_cast<QQuickWindow *>(engine.rootObjects().value(0));
    if (!window)
        return 1;
    QObject::connect(
        window, &QQuickWindow::frameSwapped, window, [] { std::fputs("first-page\n", stderr); },
        Qt::ConnectionType(Qt::DirectConnection | Qt::SingleShotConnection));
    return QGuiApplication::exec();
}
