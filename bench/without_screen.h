#pragma once

#include <QGuiApplication>
#include <QQuickStyle>

// The application object of a measurement that shows windows where there is no screen.
class WithoutScreen
{
public:
    WithoutScreen(int &argc, char **argv) : m_application(prepared(argc), argv)
    {
        QQuickStyle::setStyle(QStringLiteral("Basic"));
    }

private:
    static int &prepared(int &argc)
    {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("QT_QUICK_BACKEND", "software");
        return argc;
    }

    QGuiApplication m_application;
};
