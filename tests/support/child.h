#pragma once

#include <QProcess>
#include <gtest/gtest.h>

#include <chrono>

namespace cratewell::test {

struct ChildOptions
{
    // Variables besides those of this process.
    QList<std::pair<QString, QString>> environment = {};
    // A command that runs the program it is given: {"setpriv", ...}.
    QStringList wrapper = {};
};

// One case of this test program in a process of its own, for what is to be killed, bounded or deprived of
// rights. `name` is "Suite.Case"; a case that only serves as such a child is DISABLED_. Killed at the end.
class Child
{
public:
    explicit Child(const QString &name, const ChildOptions &options = {});
    ~Child() { kill(); }
    Q_DISABLE_COPY_MOVE(Child)

    const QByteArray &output() { return m_output += m_process.readAll(); }
    // Waits for `text` in the output; false when the child ends without it or takes longer.
    [[nodiscard]] bool prints(const QByteArray &text,
                              std::chrono::milliseconds limit = std::chrono::seconds(10));
    // False when it still runs after `limit`.
    [[nodiscard]] bool endsWithin(std::chrono::milliseconds limit);
    // Waits until it has ended; true when the case ran and passed.
    [[nodiscard]] testing::AssertionResult passes(std::chrono::milliseconds limit = std::chrono::minutes(2));
    void kill();

private:
    QProcess m_process;
    QByteArray m_output;
};

// Prints a line that the parent waits for with prints().
void report(const QByteArray &text);
// Whether the shell script succeeds below the wrapper; prints why not.
bool isPermitted(const QStringList &wrapper, const QString &script);

} // namespace cratewell::test
