#include "window/app_fixture.h"

#include "platform/fakes/fake_applications.h"
#include "state/prefs.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QQuickWindow>

namespace cratewell::test {

using namespace Qt::StringLiterals;

namespace {

QString standInFolder()
{
    return qEnvironmentVariable("CRATEWELL_SOURCE") + u"/scripts/standin_resolve"_s;
}

// A fresh project with one timeline, in the stand-in's own form.
void makeProject(const QString &file)
{
    QProcess maker;
    maker.start(u"/usr/bin/python3"_s, {standInFolder() + u"/resolve.py"_s, u"new"_s, file});
    ASSERT_TRUE(maker.waitForFinished());
    ASSERT_EQ(maker.exitCode(), 0) << maker.readAllStandardError().toStdString();
}

QJsonArray videoTracks(const QString &file)
{
    QFile project(file);
    EXPECT_TRUE(project.open(QIODevice::ReadOnly));
    const QJsonObject root = QJsonDocument::fromJson(project.readAll()).object();
    return root[u"project"][u"timelines"][0][u"video"].toArray();
}

} // namespace

TEST(InsertFromTheWindow, PlacesTheChosenAssetOnANewTopTrack)
{
    AppFixture app([](const QString &vault) {
        writePicture(vault + u"/Overlays/Flashes/Burst.png"_s, Qt::white);
        writePicture(vault + u"/Overlays/Flashes/Spark.png"_s, Qt::yellow);
    });
    ASSERT_TRUE(app.showsCards({u"Burst"_s, u"Spark"_s}));
    ASSERT_TRUE(app.controls().click(Card, u"Spark"_s));
    app.key(Qt::Key_Return);
    EXPECT_TRUE(app.controls().shows(Toast, u"Open DaVinci Resolve or Premiere Pro first. You can also drag "
                                            "any asset straight onto your timeline."_s));
    EXPECT_TRUE(app.program().prefs().recent().isEmpty());

    const QString project = app.home() + u"/project.json"_s;
    makeProject(project);
    qputenv("PYTHONPATH", standInFolder().toUtf8());
    qputenv("CRATEWELL_STANDIN_PROJECT", project.toUtf8());
    const auto tracksBefore = videoTracks(project).size();
    app.applications().setRunning({u"com.blackmagic-design.DaVinciResolve"_s});
    ASSERT_TRUE(app.controls().click(Card, u"Burst"_s));
    EXPECT_TRUE(app.controls().shows(
        Text, u"Goes to DaVinci Resolve at the playhead on a new top track, Screen blend."_s));
    app.key(Qt::Key_Return, Qt::ControlModifier);
    ASSERT_TRUE(app.controls().shows(Toast, u"Inserted Burst on V%1 at 01:00:10:12"_s.arg(tracksBefore + 1)));

    const QJsonArray tracks = videoTracks(project);
    ASSERT_EQ(tracks.size(), tracksBefore + 1);
    const QJsonArray items = tracks.last()[u"items"].toArray();
    ASSERT_EQ(items.size(), 1);
    EXPECT_EQ(items[0][u"start"].toInt(), (3600 + 10) * 24 + 12);
    EXPECT_EQ(items[0][u"composite"].toInt(), 5);
    EXPECT_EQ(app.program().prefs().recent().size(), 1);
    EXPECT_EQ(AppFixture::qmlWarnings(), "");
}

} // namespace cratewell::test
