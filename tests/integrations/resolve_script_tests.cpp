#include "integrations/internal/exchange_file.h"
#include "integrations/internal/python_run.h"
#include "integrations/internal/resolve_script.h"
#include "stand_in_resolve.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <chrono>
#include <gtest/gtest.h>

// The insert script in the real interpreter, against the stand-in.
namespace cratewell::test {
namespace {

using namespace Qt::StringLiterals;

QJsonObject requestFor(const Location &asset, const QJsonObject &changes = {})
{
    QJsonObject request{{u"id"_s, u"A"_s},       {u"path"_s, asset.text()},
                        {u"kind"_s, u"video"_s}, {u"name"_s, asset.baseName()},
                        {u"blend"_s, 5},         {u"track"_s, u"newTop"_s}};
    for (auto change = changes.begin(); change != changes.end(); ++change)
        request.insert(change.key(), change.value());
    return request;
}

QJsonObject runScript(const StandInResolve &resolve, const QJsonObject &request)
{
    const Location file = resolve.folder().child("request.json");
    EXPECT_TRUE(writeExchangeFile(file, request));
    const std::optional<QString> line =
        QCoro::waitFor(runPython({.interpreter = StandInResolve::interpreter(),
                                  .script = externalResolveScript(),
                                  .arguments = {file.text(), u"A"_s},
                                  .environment = resolve.environment(),
                                  .limit = std::chrono::seconds(20)}));
    EXPECT_TRUE(line) << "the script has printed nothing";
    return line ? QJsonDocument::fromJson(line->toUtf8()).object() : QJsonObject();
}

QJsonObject failure(const QString &message)
{
    return {{u"ok"_s, false}, {u"message"_s, message}};
}

QJsonObject success(const QString &message)
{
    return {{u"ok"_s, true}, {u"message"_s, message}};
}

TEST(ResolveScript, AnswersEachFailureWithItsSentence)
{
    const QJsonObject unreachable{{u"ok"_s, false}, {u"code"_s, u"no-external"_s}};
    const QJsonObject noProject = failure(u"Open a project in Resolve first."_s);
    const QJsonObject noTimeline = failure(u"Open a timeline in Resolve first."_s);
    const QJsonObject noImport = failure(u"Resolve could not import Smoke."_s);
    const QJsonObject noPlace = failure(u"Resolve imported Smoke but could not place it on the timeline."_s);
    const std::pair<QString, QJsonObject> cases[] = {
        {u"failures['import'] = 'raise'"_s, unreachable},
        {u"failures['scriptapp'] = 'none'"_s, unreachable},
        {u"failures['GetProjectManager'] = 'none'"_s, noProject},
        {u"state['project'] = None"_s, noProject},
        {u"project['current_timeline'] = ''"_s, noTimeline},
        {u"failures['ImportMedia'] = 'none'"_s, noImport},
        {u"failures['AppendToTimeline'] = 'none'"_s, noPlace},
        // The host drops the overlap and hands back a hollow item.
        {u"failures['AddTrack'] = 'false'; place('V1', 'Talk', 86400, 999)"_s, noPlace},
        {u"failures['ImportMedia'] = 'raise'"_s, failure(u"Resolve error: ImportMedia failed"_s)},
    };
    for (const auto &[arrange, answer] : cases) {
        StandInResolve resolve;
        ASSERT_TRUE(resolve.arrange(arrange));
        EXPECT_EQ(runScript(resolve, requestFor(resolve.file("Smoke.mov"))), answer) << qPrintable(arrange);
        EXPECT_EQ(resolve.placed(), QStringList()) << qPrintable(arrange);
        EXPECT_EQ(resolve.project()[u"current_bin"].toString(u"Master"_s), u"Master"_s)
            << qPrintable(arrange);
    }
}

struct Placement
{
    QString arrange;
    QString placed; // begins with the track and the file
    QJsonObject changes = {};
    QString timecode = u"01:00:10:12"_s;
};

void expectPlacements(std::initializer_list<Placement> placements)
{
    for (const Placement &expected : placements) {
        StandInResolve resolve;
        ASSERT_TRUE(resolve.arrange(expected.arrange));
        const QStringList words = expected.placed.split(u' ');
        const QJsonObject request = requestFor(resolve.file(words[1].toUtf8()), expected.changes);
        EXPECT_EQ(runScript(resolve, request),
                  success(u"Inserted Smoke on %1 at %2"_s.arg(words[0], expected.timecode)))
            << qPrintable(expected.arrange);
        EXPECT_EQ(resolve.placed(), QStringList(expected.placed)) << qPrintable(expected.arrange);
    }
}

TEST(ResolveScript, PlacesTheClipWhereItIsAskedTo)
{
    const QString onV1 = u"V1 Smoke.mov 86652-86772 of 0-120 mode 5"_s;
    const QString onV2 = u"V2 Smoke.mov 86652-86772 of 0-120 mode 5"_s;
    const QString onV3 = u"V3 Smoke.mov 86652-86772 of 0-120 mode 5"_s;
    const QString at29 = u"V2 Smoke.mov 108002-108122 of 0-120 mode 5"_s;
    const QString onA1 = u"A1 Smoke.wav 86652-86724 of 0-72"_s;
    const QString onA2 = u"A2 Smoke.wav 86652-86724 of 0-72"_s;
    const QString plain = u"V2 Smoke.mov 86652-86772 of 0-120"_s;
    const QJsonObject onFree{{u"track"_s, u"free"_s}};
    const QJsonObject audio{{u"kind"_s, u"audio"_s}};
    expectPlacements({
        // The whole clip in every version. One that does not say its version is taken for an old one, where
        // the end frame counts.
        {u"host['version'] = [18, 6, 6, 7, '']"_s, onV2},
        {u"host['version'] = [19, 0, 0, 25, 'b']"_s, onV2},
        {u"host['version'] = [18, 0, 0, 0, '']; failures['GetVersion'] = 'none'"_s, onV2},
        // Frames by the timeline's rate.
        {u"timeline.update(rate='29.97 DF', playhead='01:00:00;02')"_s, at29, {}, u"01:00:00;02"_s},
        {u"timeline.update(rate=29, playhead='01:00:00:02')"_s, at29, {}, u"01:00:00:02"_s},
        {u"failures['GetSetting'] = 'none'"_s, onV2},
        // The track: only the top one is looked at, under the whole clip.
        {{}, onV1, onFree},
        {u"timeline['video'] = []"_s, onV1, onFree},
        {u"timeline['video'].append({'items': []}); place('V2', 'Talk', 86600, 100)"_s, onV3, onFree},
        {u"place('V1', 'Later', 86771, 10)"_s, onV2, onFree},
        {u"place('V1', 'Before', 86600, 52); place('V1', 'After', 86772, 10)"_s, onV1, onFree},
        // A clip of 48 frames a second covers half as many frames here.
        {u"media['.mov'] = {'Type': 'Video', 'Frames': '120', 'FPS': '48'}; place('V1', 'After', 86712, 10)"_s,
         u"V1 Smoke.mov 86652-86712 of 0-120 mode 5"_s, onFree},
        {{}, onA1, audio},
        {u"timeline['audio'].append({'items': []}); place('A1', 'Voice', 86723, 10)"_s, onA2, audio},
        {u"place('A1', 'Voice', 86600, 100); timeline['video'].append({'items': []})"_s, onA2, audio},
        // Without a range of its own, five seconds as the host's preference says.
        {{}, u"V2 Smoke.png 86652-86772 of 0-120 mode 5"_s, {{u"kind"_s, u"image"_s}}},
        {u"failures['GetClipProperty'] = 'raise'"_s, onV1, onFree},
        {u"failures['GetClipProperty'] = 'none'"_s, onV2},
        // The composite mode.
        {{}, plain + u" mode 8"_s, {{u"blend"_s, 8}}},
        {{}, plain, {{u"blend"_s, -1}}},
        {{}, plain, {{u"blend"_s, 0}}},
        {u"failures['SetProperty'] = 'raise'"_s, plain},
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

// Also with a name that is no UTF-8.
TEST(ResolveScript, KeepsItsClipsInOneBinAndTheUsersBinCurrent)
{
    StandInResolve resolve;
    ASSERT_TRUE(
        resolve.arrange(u"project['pool']['bins'].append({'name': 'Dailies', 'clips': [], 'bins': []});"
                        "project['current_bin'] = 'Master/Dailies'"_s));
    const QJsonObject first = requestFor(resolve.file("Smoke.mov"));
    const QJsonObject second = requestFor(resolve.file("Dust \"2\" \U0001F525 caf\xe9.mov"));
    EXPECT_EQ(runScript(resolve, first), success(u"Inserted Smoke on V2 at 01:00:10:12"_s));
    EXPECT_EQ(runScript(resolve, second),
              success(u"Inserted Dust \"2\" \U0001F525 caf\xdce9 on V3 at 01:00:10:12"_s));

    const QJsonArray bins = resolve.project()[u"pool"][u"bins"].toArray();
    ASSERT_EQ(bins.size(), 2);
    EXPECT_EQ(bins[1][u"name"].toString(), u"Cratewell"_s);
    EXPECT_EQ(bins[1][u"clips"].toArray().size(), 2);
    EXPECT_EQ(resolve.project()[u"current_bin"].toString(), u"Master/Dailies"_s);
}

} // namespace
} // namespace cratewell::test
