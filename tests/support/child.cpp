#include "support/child.h"

#include <QCoreApplication>
#include <QDeadlineTimer>

#include <cstdio>

namespace cratewell::test {

using namespace Qt::StringLiterals;

namespace {

constexpr char mark[] = "CRATEWELL_TEST_CHILD";

} // namespace

Child::Child(const QString &name, const ChildOptions &options)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QString::fromLatin1(mark), u"1"_s);
    for (const auto &[variable, value] : options.environment)
        environment.insert(variable, value);
    m_process.setProcessEnvironment(environment);
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    QStringList command = options.wrapper;
    command += {QCoreApplication::applicationFilePath(), u"--gtest_filter="_s + name,
                u"--gtest_also_run_disabled_tests"_s};
    m_process.start(command.first(), command.sliced(1));
}

Child::~Child()
{
    kill();
}

const QByteArray &Child::output()
{
    return m_output += m_process.readAll();
}

bool Child::prints(const QByteArray &text, std::chrono::milliseconds limit)
{
    const QDeadlineTimer deadline(limit);
    while (!output().contains(text)) {
        if (!m_process.waitForReadyRead(int(deadline.remainingTime())))
            return output().contains(text);
    }
    return true;
}

bool Child::endsWithin(std::chrono::milliseconds limit)
{
    return m_process.state() == QProcess::NotRunning || m_process.waitForFinished(int(limit.count())) ||
           m_process.state() == QProcess::NotRunning;
}

testing::AssertionResult Child::passes(std::chrono::milliseconds limit)
{
    if (!endsWithin(limit))
        return testing::AssertionFailure() << "it does not end:\n" << output().constData();
    if (m_process.exitStatus() != QProcess::NormalExit || m_process.exitCode() != 0 ||
        !output().contains("[  PASSED  ] 1 test"))
        return testing::AssertionFailure() << output().constData();
    return testing::AssertionSuccess();
}

void Child::kill()
{
    m_process.kill();
    m_process.waitForFinished();
}

void report(const QByteArray &text)
{
    std::puts(text.constData());
    std::fflush(stdout);
}

bool isChild()
{
    return qEnvironmentVariableIsSet(mark);
}

bool isPermitted(const QStringList &wrapper, const QString &script)
{
    QProcess trial;
    QStringList command = wrapper + QStringList{u"sh"_s, u"-c"_s, script};
    trial.start(command.takeFirst(), command);
    if (trial.waitForFinished() && trial.exitStatus() == QProcess::NormalExit && trial.exitCode() == 0)
        return true;
    std::printf("[   NOTE   ] not permitted here: %s %s\n", qPrintable(wrapper.join(u' ')),
                trial.readAllStandardError().constData());
    return false;
}

} // namespace cratewell::test
