#include "app/command_line.h"

namespace cratewell {

using namespace Qt::StringLiterals;

namespace {

QString helpText()
{
    return u"Usage: cratewell [option]\n"
           "Keeps overlays, LUTs and sound effects in one vault and places them on your timeline.\n\n"
           "  --render-icon PATH [SIZE]  write the program's icon as a PNG of SIZE pixels (1024)\n"
           "  --version                  print the version\n"
           "  --help                     print this text\n\n"
           "With CRATEWELL_SNAPSHOT=PREFIX in the environment, pictures of the window are written to "
           "PREFIX-1.png\n"
           "and PREFIX-2.png; CRATEWELL_SCOPE and CRATEWELL_SELECT choose what they show.\n"_s;
}

RenderIcon renderIcon(const QStringList &arguments, qsizetype option)
{
    RenderIcon icon{arguments.value(option + 1)};
    bool isNumber = false;
    const int size = arguments.value(option + 2).toInt(&isNumber);
    if (isNumber && size > 0)
        icon.size = size;
    return icon;
}

} // namespace

Command parseCommandLine(const QStringList &arguments)
{
    if (const auto option = arguments.indexOf("--render-icon"_L1); option >= 0)
        return renderIcon(arguments, option);
    for (const QString &argument : arguments) {
        if (argument == "--help"_L1 || argument == "-h"_L1)
            return PrintAndExit{helpText()};
        if (argument == "--version"_L1)
            return PrintAndExit{u"Cratewell " CRATEWELL_VERSION "\n"_s};
    }
    return RunWindow{};
}

PrintAndExit unknownArgument(const QString &argument)
{
    return {u"cratewell: unknown argument: %1\n%2"_s.arg(argument, helpText()), 2};
}

} // namespace cratewell
