#include "support/child.h"

#include <QCoreApplication>
#include <QDeadlineTimer>

#include <cstdio>

namespace cratewell::test {

using namespace Qt::StringLiterals;

Child::Child(const QString &name, const ChildOptions &options)
{
    QStringList command;
    for (const auto &[variable, value] : options.environment)
        command += variable + u'=' + value;
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    m_process.start(u"env"_s,
                    command + options.wrapper +
                        QStringList{QCoreApplication::applicationFilePath(), u"--gtest_filter="_s + name,
                                    u"--gtest_also_run_disabled_tests"_s});
}

bool Child::prints(const QByteArray &text, std::chrono::milliseconds limit)
{
    const QDeadlineTimer deadline(limit);
    while (!output().contains(text) && m_process.waitForReadyRead(int(deadline.remainingTime())))
        continue;
    return output().contains(text);
}

bool Child::endsWithin(std::chrono::milliseconds limit)
{
    return m_process.waitForFinished(int(limit.count())) || m_process.state() == QProcess::NotRunning;
}

testing::AssertionResult Child::passes(std::chrono::milliseconds limit)
{
    const bool passed = endsWithin(limit) && m_process.exitStatus() == QProcess::NormalExit &&
                        m_process.exitCode() == 0 && output().contains("[  PASSED  ] 1 test");
    return testing::AssertionResult(passed) << output().constData();
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

bool isPermitted(const QStringList &wrapper, const QString &script)
{
    if (QProcess::execute(u"env"_s, wrapper + QStringList{u"sh"_s, u"-c"_s, script}) == 0)
        return true;
    report("[   NOTE   ] not permitted here");
    return false;
}

} // namespace cratewell::test
