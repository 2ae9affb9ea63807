#pragma once

#include "platform/location.h"

#include <QObject>
#include <chrono>
#include <functional>

class QProcess;

namespace cratewell {

// Runs the system's own command-line tools. Main thread. Tests put stand-ins into a folder of their own.
class CommandLineTools
{
public:
    struct Outcome
    {
        // False when the tool could not be started, crashed or took too long.
        bool finished = false;
        int exitCode = -1;
        QByteArray output;
    };
    using Done = std::function<void(const Outcome &)>;

    static Location systemFolder() { return Location::fromBytes("/usr/bin"); }
    explicit CommandLineTools(Location folder);
    ~CommandLineTools();

    // Returns at once; `done` is called once, unless this goes first. A tool that takes longer than five
    // seconds is ended.
    void run(const QString &tool, const QStringList &arguments, Done done);
    Outcome runAndWait(const QString &tool, const QStringList &arguments,
                       std::chrono::milliseconds limit) const;
    // Nobody waits for the tool, which may outlive us.
    void launch(const QString &tool, const QStringList &arguments) const;

private:
    QString program(const QString &tool) const;

    const Location m_folder;
    QObject m_running;
};

} // namespace cratewell
