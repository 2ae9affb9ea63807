#include "platform/mac/command_line_tools.h"

#include <QProcess>
#include <QTimer>
#include <memory>

namespace cratewell {

namespace {

constexpr std::chrono::seconds longest(5);

CommandLineTools::Outcome outcomeOf(QProcess &process)
{
    const bool finished =
        process.error() == QProcess::UnknownError && process.exitStatus() == QProcess::NormalExit;
    return {finished, finished ? process.exitCode() : -1, process.readAllStandardOutput()};
}

} // namespace

CommandLineTools::CommandLineTools(Location folder) : m_folder(std::move(folder)) {}

CommandLineTools::~CommandLineTools()
{
    for (QProcess *process : m_running.findChildren<QProcess *>()) {
        process->disconnect();
        process->kill();
        process->waitForFinished(1000);
    }
}

QString CommandLineTools::program(const QString &tool) const
{
    return m_folder.child(tool).text();
}

void CommandLineTools::run(const QString &tool, const QStringList &arguments, Done done)
{
    auto *process = new QProcess(&m_running);
    process->setStandardErrorFile(QProcess::nullDevice());
    const auto finish = [process, done = std::move(done)] {
        process->disconnect();
        process->deleteLater();
        done(outcomeOf(*process));
    };
    QObject::connect(process, &QProcess::finished, &m_running, finish);
    QObject::connect(
        process, &QProcess::errorOccurred, &m_running,
        [finish](QProcess::ProcessError error) {
            if (error == QProcess::FailedToStart)
                finish();
        },
        Qt::QueuedConnection);
    QTimer::singleShot(longest, process, &QProcess::kill);
    process->start(program(tool), arguments);
}

CommandLineTools::Outcome CommandLineTools::runAndWait(const QString &tool, const QStringList &arguments,
                                                       std::chrono::milliseconds limit) const
{
    QProcess process;
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(program(tool), arguments);
    if (!process.waitForFinished(int(limit.count()))) {
        process.kill();
        process.waitForFinished(int(limit.count()));
        return {};
    }
    return outcomeOf(process);
}

void CommandLineTools::launch(const QString &tool, const QStringList &arguments) const
{
    QProcess process;
    process.setProgram(program(tool));
    process.setArguments(arguments);
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.startDetached();
}

} // namespace cratewell
