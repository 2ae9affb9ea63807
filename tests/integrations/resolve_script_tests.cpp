#include "integrations/internal/exchange_file.h"
#include "integrations/internal/python_run.h"
#include "integrations/internal/resolve_script.h"
#include "stand_in_resolve.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <gtest/gtest.h>

// The insert script in the real interpreter, against the stand-in.
namespace cratewell::test {
namespace {

using namespace Qt::StringLiterals;

QJsonObject requestFor(const Location &asset, const QJsonObject &changes = {})
{
    QJsonObject request{{u"path"_s, asset.text()},
                        {u"kind"_s, u"video"_s},
                        {u"name"_s, asset.baseName()},
                        {u"blend"_s, 5},
                        {u"track"_s, u"newTop"_s}};
    for (auto change = changes.begin(); change != changes.end(); ++change)
        request.insert(change.key(), change.value());
    return request;
}

QJsonObject runScript(const StandInResolve &resolve, const QJsonObject &request,
                      const QProcessEnvironment &environment)
{
    const Location file = resolve.folder().child("request.json");
    EXPECT_TRUE(writeExchangeFile(file, request));
    const std::optional<QString> line =
        QCoro::waitFor(runPython({.interpreter = StandInResolve::interpreter(),
                                  .script = externalResolveScript(),
                                  .arguments = {file.text()},
                                  .environment = environment}));
    EXPECT_TRUE(line) << "the script has printed nothing";
    return line ? QJsonDocument::fromJson(line->toUtf8()).object() : QJsonObject();
}

QJsonObject runScript(const StandInResolve &resolve, const QJsonObject &request)
{
    return runScript(resolve, request, resolve.environment());
}

QJsonObject failure(const QString &message)
{
    return {{u"ok"_s, false}, {u"message"_s, message}};
}

QJsonObject success(const QString &message)
{
    return {{u"ok"_s, true}, {u"message"_s, message}};
}

TEST(ResolveScript, SaysWhenResolveCannotBeReached)
{
    const QJsonObject unreachable{{u"ok"_s, false}, {u"code"_s, u"no-external"_s}};
    for (const QString &trouble : {u"failures['import'] = 'raise'"_s, u"failures['scriptapp'] = 'raise'"_s,
                                   u"failures['scriptapp'] = 'none'"_s}) {
        StandInResolve resolve;
        ASSERT_TRUE(resolve.arrange(trouble));
        EXPECT_EQ(runScript(resolve, requestFor(resolve.file("Smoke.mov"))), unreachable)
            << qPrintable(trouble);
    }
    StandInResolve resolve;
    ASSERT_TRUE(resolve.arrange({}));
    QProcessEnvironment withoutModule = resolve.environment();
    withoutModule.remove(u"PYTHONPATH"_s);
    EXPECT_EQ(runScript(resolve, requestFor(resolve.file("Smoke.mov")), withoutModule), unreachable);
}

TEST(ResolveScript, AnswersEachFailureWithItsSentence)
{
    const QString noProject = u"Open a project in Resolve first."_s;
    const QString noTimeline = u"Open a timeline in Resolve first."_s;
    const QString noImport = u"Resolve could not import Smoke."_s;
    const QString noPlace = u"Resolve imported Smoke but could not place it on the timeline."_s;
    const struct
    {
        QString arrange;
        QString message;
    } cases[] = {
        {u"failures['GetProjectManager'] = 'none'"_s, noProject},
        {u"state['project'] = None"_s, noProject},
        {u"project['current_timeline'] = ''"_s, noTimeline},
        {u"failures['GetCurrentTimeline'] = 'false'"_s, noTimeline},
        {u"failures['ImportMedia'] = 'none'"_s, noImport},
        {u"failures['ImportMedia'] = 'false'"_s, noImport},
        {u"failures['ImportMedia'] = 'empty'"_s, noImport},
        {u"failures['AppendToTimeline'] = 'none'"_s, noPlace},
        {u"failures['AppendToTimeline'] = 'false'"_s, noPlace},
        {u"failures['AppendToTimeline'] = 'empty'"_s, noPlace},
        // The host drops the overlap and hands back a hollow item, or nothing.
        {u"failures['AddTrack'] = 'false'; place('V1', 'Talk', 86400, 999)"_s, noPlace},
        {u"failures['AddTrack'] = 'false'; place('V1', 'Talk', 86400, 999); host['hollow_overlaps'] = False"_s,
         noPlace},
        {u"failures['ImportMedia'] = 'raise'"_s, u"Resolve error: ImportMedia failed"_s},
        {u"failures['GetCurrentTimecode'] = 'raise'"_s, u"Resolve error: GetCurrentTimecode failed"_s},
    };
    for (const auto &[arrange, message] : cases) {
        StandInResolve resolve;
        ASSERT_TRUE(resolve.arrange(arrange));
        EXPECT_EQ(runScript(resolve, requestFor(resolve.file("Smoke.mov"))), failure(message))
            << qPrintable(arrange);
        EXPECT_EQ(resolve.placed(), QStringList()) << qPrintable(arrange);
        EXPECT_EQ(resolve.project()[u"current_bin"].toString(u"Master"_s), u"Master"_s)
            << qPrintable(arrange);
    }
}

TEST(ResolveScript, RefusesARequestWithoutPathOrKind)
{
    StandInResolve resolve;
    ASSERT_TRUE(resolve.arrange({}));
    EXPECT_EQ(runScript(resolve, {{u"kind"_s, u"video"_s}}), failure(u"Resolve error: 'path'"_s));
    EXPECT_EQ(runScript(resolve, {{u"path"_s, u"/Smoke.mov"_s}}), failure(u"Resolve error: 'kind'"_s));
}

struct Placement
{
    QString arrange;
    QByteArray file;
    QJsonObject changes;
    QString message;
    QString placed;
};

void expectPlacements(std::initializer_list<Placement> placements)
{
    for (const Placement &expected : placements) {
        StandInResolve resolve;
        ASSERT_TRUE(resolve.arrange(expected.arrange));
        const QJsonObject request = requestFor(resolve.file(expected.file), expected.changes);
        EXPECT_EQ(runScript(resolve, request), success(expected.message)) << qPrintable(expected.arrange);
        EXPECT_EQ(resolve.placed(), QStringList(expected.placed)) << qPrintable(expected.arrange);
    }
}

TEST(ResolveScript, PlacesTheWholeClipInEveryVersion)
{
    const QString message = u"Inserted Smoke on V2 at 01:00:10:12"_s;
    const QString placed = u"V2 Smoke.mov 86652-86772 of 0-120 mode 5"_s;
    expectPlacements({
        {u"host['version'] = [18, 6, 6, 7, '']"_s, "Smoke.mov", {}, message, placed},
        {u"host['version'] = [19, 0, 0, 25, 'b']"_s, "Smoke.mov", {}, message, placed},
        {u"host['version'] = [20, 3, 1, 6, '']"_s, "Smoke.mov", {}, message, placed},
        {u"host['version'] = [21, 0, 3, 7, '']"_s, "Smoke.mov", {}, message, placed},
        // One that does not tell its version is taken for an old one, where the end frame counts.
        {u"host['version'] = [18, 0, 0, 0, '']; failures['GetVersion'] = 'none'"_s,
         "Smoke.mov",
         {},
         message,
         placed},
    });
}

TEST(ResolveScript, CountsFramesByTheTimelinesRate)
{
    expectPlacements({
        {u"timeline.update(rate='29.97 DF', playhead='01:00:00;02')"_s,
         "Smoke.mov",
         {},
         u"Inserted Smoke on V2 at 01:00:00;02"_s,
         u"V2 Smoke.mov 108002-108122 of 0-120 mode 5"_s},
        {u"timeline.update(rate=29, playhead='01:00:00:02')"_s,
         "Smoke.mov",
         {},
         u"Inserted Smoke on V2 at 01:00:00:02"_s,
         u"V2 Smoke.mov 108002-108122 of 0-120 mode 5"_s},
        {u"timeline.update(rate='59.94', playhead='00:01:00:00')"_s,
         "Smoke.mov",
         {},
         u"Inserted Smoke on V2 at 00:01:00:00"_s,
         u"V2 Smoke.mov 3600-3720 of 0-120 mode 5"_s},
        {u"timeline.update(rate='23.976', playhead='00:00:01:23')"_s,
         "Smoke.mov",
         {},
         u"Inserted Smoke on V2 at 00:00:01:23"_s,
         u"V2 Smoke.mov 47-167 of 0-120 mode 5"_s},
        {u"failures['GetSetting'] = 'none'"_s,
         "Smoke.mov",
         {},
         u"Inserted Smoke on V2 at 01:00:10:12"_s,
         u"V2 Smoke.mov 86652-86772 of 0-120 mode 5"_s},
    });
}

TEST(ResolveScript, ChoosesTheTrack)
{
    const QJsonObject onFree{{u"track"_s, u"free"_s}};
    const QJsonObject sound{{u"kind"_s, u"audio"_s}};
    const auto on = [](QStringView track) { return u"Inserted Smoke on %1 at 01:00:10:12"_s.arg(track); };
    const auto clip = [](QStringView track) {
        return u"%1 Smoke.mov 86652-86772 of 0-120 mode 5"_s.arg(track);
    };
    const auto wave = [](QStringView track) { return u"%1 Smoke.wav 86652-86724 of 0-72"_s.arg(track); };
    expectPlacements({
        {u"timeline['video'] = []"_s, "Smoke.mov", {}, on(u"V1"), clip(u"V1")},
        {u""_s, "Smoke.mov", {{u"track"_s, u"lowest"_s}}, on(u"V2"), clip(u"V2")},
        {u""_s, "Smoke.mov", onFree, on(u"V1"), clip(u"V1")},
        {u"timeline['video'] = []"_s, "Smoke.mov", onFree, on(u"V1"), clip(u"V1")},
        // Only the top track is looked at, under the whole clip.
        {u"timeline['video'].append({'items': []}); place('V2', 'Talk', 86600, 100)"_s, "Smoke.mov", onFree,
         on(u"V3"), clip(u"V3")},
        {u"place('V1', 'Later', 86771, 10)"_s, "Smoke.mov", onFree, on(u"V2"), clip(u"V2")},
        {u"place('V1', 'Before', 86600, 52); place('V1', 'After', 86772, 10)"_s, "Smoke.mov", onFree,
         on(u"V1"), clip(u"V1")},
        // A clip of 48 frames a second covers half as many frames here.
        {u"media['.mov'] = {'Type': 'Video', 'Frames': '120', 'FPS': '48'}; place('V1', 'After', 86712, 10)"_s,
         "Smoke.mov", onFree, on(u"V1"), u"V1 Smoke.mov 86652-86712 of 0-120 mode 5"_s},
        {u""_s, "Smoke.wav", sound, on(u"A1"), wave(u"A1")},
        {u"timeline['audio'].append({'items': []}); place('A1', 'Voice', 86723, 10)"_s, "Smoke.wav", sound,
         on(u"A2"), wave(u"A2")},
        {u"place('A1', 'Voice', 86600, 100); timeline['video'].append({'items': []})"_s, "Smoke.wav", sound,
         on(u"A2"), wave(u"A2")},
    });
}

TEST(ResolveScript, AddsAStereoTrackForSounds)
{
    StandInResolve resolve;
    ASSERT_TRUE(resolve.arrange(u"timeline['audio'] = []"_s));
    const QJsonObject request = requestFor(resolve.file("Hit.wav"), {{u"kind"_s, u"audio"_s}});
    EXPECT_EQ(runScript(resolve, request), success(u"Inserted Hit on A1 at 01:00:10:12"_s));
    EXPECT_EQ(resolve.project()[u"timelines"][0][u"audio"][0][u"type"].toString(), u"stereo"_s);
}

TEST(ResolveScript, LeavesTheRangeToTheHostWhereTheClipHasNone)
{
    expectPlacements({
        // Five seconds, as the host's preference says.
        {u""_s,
         "Smoke.png",
         {{u"kind"_s, u"image"_s}},
         u"Inserted Smoke on V2 at 01:00:10:12"_s,
         u"V2 Smoke.png 86652-86772 of 0-120 mode 5"_s},
        {u"failures['GetClipProperty'] = 'raise'"_s,
         "Smoke.mov",
         {{u"track"_s, u"free"_s}},
         u"Inserted Smoke on V1 at 01:00:10:12"_s,
         u"V1 Smoke.mov 86652-86772 of 0-120 mode 5"_s},
        {u"failures['GetClipProperty'] = 'none'"_s,
         "Smoke.mov",
         {},
         u"Inserted Smoke on V2 at 01:00:10:12"_s,
         u"V2 Smoke.mov 86652-86772 of 0-120 mode 5"_s},
    });
}

TEST(ResolveScript, SetsTheCompositeModeWhereOneIsAsked)
{
    const QString message = u"Inserted Smoke on V2 at 01:00:10:12"_s;
    const QString plain = u"V2 Smoke.mov 86652-86772 of 0-120"_s;
    expectPlacements({
        {u""_s, "Smoke.mov", {{u"blend"_s, 8}}, message, plain + u" mode 8"_s},
        {u""_s, "Smoke.mov", {{u"blend"_s, -1}}, message, plain},
        {u""_s, "Smoke.mov", {{u"blend"_s, 0}}, message, plain},
        {u"failures['SetProperty'] = 'raise'"_s, "Smoke.mov", {}, message, plain},
        {u"failures['SetProperty'] = 'false'"_s, "Smoke.mov", {}, message, plain},
    });
}

TEST(ResolveScript, KeepsItsClipsInOneBinAndTheUsersBinCurrent)
{
    StandInResolve resolve;
    ASSERT_TRUE(
        resolve.arrange(u"project['pool']['bins'].append({'name': 'Dailies', 'clips': [], 'bins': []});"
                        "project['current_bin'] = 'Master/Dailies'"_s));
    const QJsonObject first = requestFor(resolve.file("Smoke.mov"));
    const QJsonObject second = requestFor(resolve.file("Dust \"2\" \U0001F525.mov"));
    EXPECT_EQ(runScript(resolve, first), success(u"Inserted Smoke on V2 at 01:00:10:12"_s));
    EXPECT_EQ(runScript(resolve, second), success(u"Inserted Dust \"2\" \U0001F525 on V3 at 01:00:10:12"_s));

    const QJsonArray bins = resolve.project()[u"pool"][u"bins"].toArray();
    ASSERT_EQ(bins.size(), 2);
    EXPECT_EQ(bins[1][u"name"].toString(), u"Cratewell"_s);
    EXPECT_EQ(bins[1][u"clips"].toArray().size(), 2);
    EXPECT_EQ(resolve.project()[u"current_bin"].toString(), u"Master/Dailies"_s);
}

TEST(ResolveScript, ReachesFilesWhoseNamesAreNoUtf8)
{
    StandInResolve resolve;
    ASSERT_TRUE(resolve.arrange({}));
    const QJsonObject answer = runScript(resolve, requestFor(resolve.file("caf\xe9.mov")));
    EXPECT_EQ(answer, success(u"Inserted caf\xdce9 on V2 at 01:00:10:12"_s));
}

} // namespace
} // namespace cratewell::test
