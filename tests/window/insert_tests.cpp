#include "window/app_fixture.h"

#include "integrations/inserter.h"
#include "platform/fakes/fake_applications.h"
#include "state/app_state.h"
#include "state/prefs.h"
#include "support/wait.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <gtest/gtest.h>

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
    const QString project = app.home() + u"/project.json"_s;
    makeProject(project);
    qputenv("PYTHONPATH", standInFolder().toUtf8());
    qputenv("CRATEWELL_STANDIN_PROJECT", project.toUtf8());
    const auto tracksBefore = videoTracks(project).size();
    app.applications().setRunning({u"com.blackmagic-design.DaVinciResolve"_s});
    ASSERT_TRUE(app.showsCards({u"Burst"_s, u"Spark"_s}));

    ASSERT_TRUE(app.controls().click(QAccessible::ListItem, u"Burst"_s));
    EXPECT_NE(
        app.controls().find(QAccessible::StaticText,
                            u"Goes to DaVinci Resolve at the playhead on a new top track, Screen blend."_s),
        nullptr);
    app.key(Qt::Key_Return, Qt::ControlModifier);

    ASSERT_TRUE(waitUntil([&] { return !app.program().inserter().toastText().isEmpty(); }));
    const QString toast = u"Inserted Burst on V%1 at 01:00:10:12"_s.arg(tracksBefore + 1);
    EXPECT_EQ(app.program().inserter().toastText(), toast);
    EXPECT_TRUE(waitUntil([&] { return app.controls().find(QAccessible::AlertMessage, toast) != nullptr; }));

    const QJsonArray tracks = videoTracks(project);
    ASSERT_EQ(tracks.size(), tracksBefore + 1);
    const QJsonArray items = tracks.last()[u"items"].toArray();
    ASSERT_EQ(items.size(), 1);
    EXPECT_EQ(items[0][u"start"].toInt(), (3600 + 10) * 24 + 12);
    EXPECT_EQ(items[0][u"composite"].toInt(), 5);
    EXPECT_EQ(app.program().prefs().recent().size(), 1);
    EXPECT_EQ(AppFixture::qmlWarnings(), "");
}

TEST(InsertFromTheWindow, SaysWhatToDoWhenNoEditorRuns)
{
    AppFixture app([](const QString &vault) { writePicture(vault + u"/Overlays/Lone.png"_s, Qt::red); });
    ASSERT_TRUE(app.showsCards({u"Lone"_s}));
    ASSERT_TRUE(app.controls().doubleClick(QAccessible::ListItem, u"Lone"_s));
    EXPECT_TRUE(waitUntil([&] {
        return app.controls().find(QAccessible::AlertMessage,
                                   u"Open DaVinci Resolve or Premiere Pro first. You can also drag any asset "
                                   "straight onto your timeline."_s) != nullptr;
    }));
    EXPECT_TRUE(app.program().prefs().recent().isEmpty());
}

} // namespace cratewell::test
