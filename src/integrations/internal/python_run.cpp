#include "integrations/internal/python_run.h"

#include <QCoro/QCoroSignal>
#include <QDir>
#include <QProcess>
#include <unistd.h>

namespace cratewell {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

// How long a killed program may take to be gone before we stop waiting for it.
constexpr auto patience = 2s;

void LastLine::feed(QByteArrayView bytes)
{
    const QString text = m_decoder.decode(bytes);
    qsizetype from = 0;
    for (qsizetype end = 0; (end = text.indexOf(u'\n', from)) >= 0; from = end + 1) {
        add(QStringView(text).sliced(from, end - from));
        endLine();
    }
    add(QStringView(text).sliced(from));
}

std::optional<QString> LastLine::take()
{
    // Ends the last line, and a character that was left half.
    feed("\n");
    return m_decoder.hasError() ? std::nullopt : std::exchange(m_last, {});
}

void LastLine::add(QStringView part)
{
    m_tooLong = m_tooLong || m_line.size() + part.size() > longest;
    if (m_tooLong)
        m_line.clear();
    else
        m_line += part;
}

void LastLine::endLine()
{
    if (m_tooLong)
        m_last.reset();
    else if (!m_line.isEmpty())
        m_last = m_line;
    m_line.clear();
    m_tooLong = false;
}

PythonRun::PythonRun(PythonCall call) : m_call(std::move(call)), m_process(new QProcess(this))
{
    m_watchdog.setSingleShot(true);
    QMetaObject::invokeMethod(this, &PythonRun::start, Qt::QueuedConnection);
}

PythonRun::~PythonRun()
{
    if (m_process->state() == QProcess::NotRunning)
        return;
    // Not even killing ended it: nobody waits for it here.
    m_process->disconnect(this);
    m_process->setParent(nullptr);
    connect(m_process, &QProcess::finished, m_process, &QObject::deleteLater);
}

void PythonRun::start()
{
    m_process->setProgram(m_call.interpreter.text());
    m_process->setArguments(QStringList{u"-c"_s, m_call.script} + m_call.arguments);
    m_process->setProcessEnvironment(m_call.environment);
    // Nobody but the system puts modules there.
    m_process->setWorkingDirectory(QDir::rootPath());
    m_process->setStandardInputFile(QProcess::nullDevice());
    m_process->setStandardErrorFile(QProcess::nullDevice());
    // Should this program end first, the child still has an end.
    const auto alarm = std::chrono::ceil<std::chrono::seconds>(m_call.limit + patience);
    m_process->setChildProcessModifier([seconds = unsigned(alarm.count())] { ::alarm(seconds); });

    connect(m_process, &QProcess::readyReadStandardOutput, this,
            [this] { m_output.feed(m_process->readAllStandardOutput()); });
    connect(m_process, &QProcess::finished, this, &PythonRun::finish);
    connect(m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            finish();
    });
    connect(&m_watchdog, &QTimer::timeout, this, [this] {
        m_process->kill();
        QTimer::singleShot(patience, this, &PythonRun::finish);
    });
    m_watchdog.start(m_call.limit);
    m_process->start(QIODevice::ReadOnly);
}

void PythonRun::finish()
{
    if (std::exchange(m_ended, true))
        return;
    m_watchdog.stop();
    m_output.feed(m_process->readAllStandardOutput());
    Q_EMIT ended(m_output.take());
}

QCoro::Task<std::optional<QString>> runPython(PythonCall call)
{
    auto *run = new PythonRun(std::move(call));
    std::optional<QString> lastLine = co_await qCoro(run, &PythonRun::ended);
    run->deleteLater();
    co_return lastLine;
}

} // namespace cratewell
