#include "stand_in_resolve.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace cratewell::test {
namespace {

using namespace Qt::StringLiterals;

const QString arrangement = uR"(
import os, project_file
path = os.environ[project_file.VARIABLE]
state = project_file.read(path) if os.path.exists(path) else project_file.fresh()
host, failures, media, project = (state[key] for key in ("host", "failures", "media", "project"))
timeline = project_file.current_timeline(state)
place = lambda *clip: project_file.place(state, *clip)
%1
project_file.write(path, state)
)"_s;

QString textOf(const QJsonObject &item)
{
    const auto number = [](const QJsonValue &value) { return QString::number(value.toInt()); };
    const int mode = item[u"composite"].toInt();
    return u" %1 %2-%3 of %4-%5"_s.arg(item[u"name"].toString(), number(item[u"start"]), number(item[u"end"]),
                                       number(item[u"source"][0]), number(item[u"source"][1])) +
           (mode ? u" mode %1"_s.arg(mode) : QString());
}

} // namespace

StandInResolve::StandInResolve() : m_folder(Location::fromText(m_temporary.path())) {}

StandInResolve::~StandInResolve()
{
    // The temporary folder cannot take away names that are no UTF-8.
    std::error_code ignored;
    std::filesystem::remove_all(m_folder.c_str(), ignored);
}

bool StandInResolve::arrange(const QString &statements)
{
    QProcess python;
    python.setProcessEnvironment(environment());
    python.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    python.start(interpreter().text(), {u"-c"_s, arrangement.arg(statements)});
    return python.waitForFinished() && python.exitStatus() == QProcess::NormalExit && python.exitCode() == 0;
}

Location StandInResolve::file(QByteArrayView name) const
{
    const Location place = m_folder.child(name);
    ::close(::open(place.c_str(), O_CREAT | O_WRONLY, 0600));
    return place;
}

QProcessEnvironment StandInResolve::environment() const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"PYTHONPATH"_s, QStringLiteral(STAND_IN_RESOLVE));
    environment.insert(u"PYTHONDONTWRITEBYTECODE"_s, u"1"_s);
    environment.insert(u"CRATEWELL_STANDIN_PROJECT"_s, projectFile().text());
    return environment;
}

QJsonObject StandInResolve::project() const
{
    QFile file(projectFile().text());
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll())[u"project"].toObject()
                                          : QJsonObject();
}

QStringList StandInResolve::placed() const
{
    QStringList placed;
    for (const QString &kind : {u"video"_s, u"audio"_s}) {
        const QJsonArray tracks = project()[u"timelines"][0][kind].toArray();
        for (qsizetype i = 0; i < tracks.size(); ++i) {
            // What a test has put there itself comes from no file.
            for (const QJsonValue item : tracks[i][u"items"].toArray())
                if (!item[u"path"].toString().isEmpty())
                    placed += kind[0].toUpper() + QString::number(i + 1) + textOf(item.toObject());
        }
    }
    return placed;
}

Location StandInResolve::interpreter()
{
    return Location::fromText(u"/usr/bin/python3"_s);
}

Location StandInResolve::projectFile() const
{
    return m_folder.child("project.json");
}

} // namespace cratewell::test
