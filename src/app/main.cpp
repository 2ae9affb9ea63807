#include "app/application.h"
#include "app/command_line.h"
#include "app/window_capture.h"
#include "platform/single_instance.h"
#include "platform/termination_signals.h"
#include "ui/shell/icon_renderer.h"
#include "vault/startup_maintenance.h"

#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QQuickStyle>

#include <cstdio>

namespace {

using namespace cratewell;
using namespace Qt::StringLiterals;

QStringList argumentsOf(int argc, char **argv)
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QFile::decodeName(argv[i]));
    return arguments;
}

// Pictures are taken without a person, and so also without a screen.
void doWithoutScreen()
{
    if (qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ||
        qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        return;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
}

int printAndExit(const PrintAndExit &print)
{
    std::fputs(qPrintable(print.text), print.exitCode == 0 ? stdout : stderr);
    return print.exitCode;
}

int runWindow(int argc, char **argv)
{
    const auto captures = WindowCapturePlan::fromEnvironment(QProcessEnvironment::systemEnvironment());
    if (captures)
        doWithoutScreen();

    QGuiApplication application(argc, argv);
    QGuiApplication::setApplicationName(u"cratewell"_s);
    QGuiApplication::setApplicationDisplayName(u"Cratewell"_s);
    QGuiApplication::setApplicationVersion(u"" CRATEWELL_VERSION ""_s);
    QGuiApplication::setDesktopFileName(u"cratewell"_s);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    QQuickStyle::setStyle(u"Basic"_s);

    // The toolkit has taken its own arguments out by now.
    if (const QStringList left = QGuiApplication::arguments(); left.size() > 1)
        return printAndExit(unknownArgument(left.at(1)));

    const SystemPaths paths = SystemPaths::standard();
    SingleInstance instance(paths.defaultsFile());
    if (!captures && !instance.claim())
        return 0;

    Application cratewell(paths, Services::native(paths));
    TerminationSignals signals;
    QObject::connect(&signals, &TerminationSignals::terminationRequested, &application,
                     &QGuiApplication::quit);
    QObject::connect(&instance, &SingleInstance::raiseRequested, &cratewell, &Application::bringToFront);
    if (!cratewell.launch(captures ? StartupMaintenance::Skip : StartupMaintenance::Run))
        return 1;
    if (captures)
        scheduleWindowCaptures(cratewell, *captures);
    const int exitCode = QGuiApplication::exec();
    cratewell.drain();
    return exitCode;
}

// Ends well also when the picture could not be written.
int writeIcon(const RenderIcon &icon)
{
    renderIcon(IconStyle::Chrome, icon.size).save(icon.path, "PNG");
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    const Command command = parseCommandLine(argumentsOf(argc, argv));
    if (const auto *icon = std::get_if<RenderIcon>(&command))
        return writeIcon(*icon);
    if (const auto *print = std::get_if<PrintAndExit>(&command))
        return printAndExit(*print);
    return runWindow(argc, argv);
}
