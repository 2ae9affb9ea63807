#include "stand_in_resolve.h"
#include "support/wait.h"

#include <QFile>
#include <QProcess>
#include <gtest/gtest.h>

namespace cratewell::test {
namespace {

using namespace Qt::StringLiterals;

const QString command = QStringLiteral(STAND_IN_RESOLVE) + u"/resolve.py"_s;

QString runCommand(const QStringList &arguments)
{
    QProcess python;
    python.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    python.start(StandInResolve::interpreter().text(), QStringList(command) + arguments);
    EXPECT_TRUE(python.waitForFinished());
    EXPECT_EQ(python.exitCode(), 0) << qPrintable(arguments.join(u' '));
    return QString::fromUtf8(python.readAllStandardOutput());
}

TEST(StandInCommand, MakesChangesAndShowsAProject)
{
    const StandInResolve resolve;
    const QString file = resolve.folder().child("hand.json").text();
    runCommand({u"new"_s, file, u"--video"_s, u"2"_s, u"--rate"_s, u"25"_s, u"--version"_s, u"18.6"_s});
    runCommand({u"playhead"_s, file, u"01:00:02:00"_s});
    runCommand({u"place"_s, file, u"V1"_s, u"Interview"_s, u"01:00:00:00"_s, u"60"_s});
    runCommand({u"fail"_s, file, u"ImportMedia"_s, u"none"_s});
    runCommand({u"fail"_s, file, u"ImportMedia"_s, u"ok"_s});
    EXPECT_EQ(runCommand({u"show"_s, file}), u"Stand-in · Timeline 1 · 25 fps · playhead 01:00:02:00\n"
                                             "V2   empty\n"
                                             "V1   01:00:00:00 - 01:00:02:10  Interview  Normal\n"
                                             "A1   empty\n"_s);
}

TEST(StandInCommand, StandsInTheProcessListAsTheEditor)
{
    const StandInResolve resolve;
    QProcess companion;
    companion.start(u"cat"_s, QStringList());
    ASSERT_TRUE(companion.waitForStarted());

    QProcess editor;
    editor.start(
        StandInResolve::interpreter().text(),
        {command, u"start"_s, resolve.folder().text(), u"--while"_s, QString::number(companion.processId())});
    ASSERT_TRUE(editor.waitForStarted());
    const QString program = u"/proc/%1/exe"_s.arg(editor.processId());
    const QString expected = resolve.folder().text() + u"/opt/resolve/bin/resolve"_s;
    EXPECT_TRUE(waitUntil([&] { return QFile::symLinkTarget(program) == expected; }));

    companion.closeWriteChannel();
    ASSERT_TRUE(companion.waitForFinished());
    EXPECT_TRUE(waitUntil([&] { return editor.state() == QProcess::NotRunning; }));
    EXPECT_EQ(editor.exitCode(), 0);
}

} // namespace
} // namespace cratewell::test
