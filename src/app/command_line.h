#pragma once

#include <QString>
#include <QStringList>
#include <variant>

namespace cratewell {

struct RunWindow
{
};
// Print `text` (on the error stream when `exitCode` is not 0) and end.
struct PrintAndExit
{
    QString text;
    int exitCode = 0;
};
struct RenderIcon
{
    QString path;
    int size = 1024; // pixels
};

using Command = std::variant<RunWindow, PrintAndExit, RenderIcon>;

// What the arguments (without the program's name) ask for. "--render-icon PATH [SIZE]" wins wherever it
// stands; a size that is missing or no positive number means 1024. Other arguments may be the toolkit's: they
// run the window.
Command parseCommandLine(const QStringList &arguments);
// The complaint about an argument that is neither ours nor the toolkit's.
PrintAndExit unknownArgument(const QString &argument);

} // namespace cratewell
