#pragma once

#include "platform/location.h"

#include <QCoro/QCoroTask>
#include <QObject>
#include <QProcessEnvironment>
#include <QStringDecoder>
#include <QStringList>
#include <QTimer>
#include <chrono>
#include <optional>

class QProcess;

namespace cratewell {

// Takes a program's output as it comes and keeps only its last line that is not empty.
class LastLine
{
public:
    static constexpr qsizetype longest = 1 << 20; // characters

    void feed(QByteArrayView bytes);
    // After the output's end. Nothing when there was no such line, when it is too long, or when any of the
    // output was not UTF-8.
    std::optional<QString> take();

private:
    void add(QStringView part);
    void endLine();

    QStringDecoder m_decoder{QStringDecoder::Utf8};
    QString m_line;
    bool m_tooLong = false;
    std::optional<QString> m_last;
};

struct PythonCall
{
    Location interpreter;
    QString script;
    QStringList arguments;
    QProcessEnvironment environment;
    std::chrono::milliseconds limit{};
};

// One run of a script text by the interpreter, which is killed at the time limit. Standard error is dropped,
// standard input is empty, the current folder is "/". Main thread. Ends exactly once, after its construction
// has returned.
class PythonRun : public QObject
{
    Q_OBJECT
public:
    explicit PythonRun(PythonCall call);
    ~PythonRun() override;

Q_SIGNALS:
    // The last line that is not empty, also of a run that was killed.
    void ended(std::optional<QString> lastLine);

private:
    void start();
    void finish();

    PythonCall m_call;
    QProcess *m_process;
    QTimer m_watchdog;
    LastLine m_output;
    bool m_ended = false;
};

QCoro::Task<std::optional<QString>> runPython(PythonCall call);

} // namespace cratewell
