#include "integrations/internal/exchange_file.h"
#include "integrations/internal/python_run.h"
#include "integrations/resolve_bridge.h"
#include "platform/fakes/memory_defaults.h"
#include "state/prefs.h"
#include "support/file_size_limit.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace cratewell::test {
namespace {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

const QString queued =
    u"Queued for Resolve. Choose Workspace › Scripts › Cratewell Insert in Resolve to place "
    "it. To make this one click, allow Cratewell in System Settings › Privacy & Security › "
    "Accessibility."_s;

const QString onTheProject = uR"(
import os, project_file
path = os.environ[project_file.VARIABLE]
state = project_file.read(path) if os.path.exists(path) else project_file.fresh()
host, failures, media, project = (state[key] for key in ("host", "failures", "media", "project"))
timeline = project_file.current_timeline(state)
place = lambda *clip: project_file.place(state, *clip)
%1
project_file.write(path, state)
)"_s;

// Without the clips that a test has placed itself, which come from no file.
const QString printPlaced = uR"(
for kind, letter in (("video", "V"), ("audio", "A")):
    for number, track in enumerate(timeline[kind], 1):
        for item in filter(lambda item: item["path"], track["items"]):
            print("%s%d %s %d-%d of" % (letter, number, item["name"], item["start"], item["end"]),
                  "%d-%d" % tuple(item["source"]), "mode", item["composite"], track.get("type", ""))
)"_s;

TEST(LastLine, IsTheLastOneThatIsNotEmpty)
{
    const std::pair<QByteArrayList, std::optional<QString>> cases[] = {
        {{"\n\n"}, {}},
        {{"noise\n{\"ok\"", ":true}\n\n"}, u"{\"ok\":true}"_s},
        {{"one\ntwo"}, u"two"_s},
        {{"caf\xc3", "\xa9\n"}, u"café"_s},
        {{"bad \xe9\n{}\n"}, {}},
        {{"half \xc3"}, {}},
        {{"short\n", QByteArray(LastLine::longest, 'x'), "x\n"}, {}},
        {{QByteArray(LastLine::longest + 1, 'x'), "\nshort\n"}, u"short"_s},
    };
    for (const auto &[chunks, line] : cases) {
        LastLine output;
        for (const QByteArray &chunk : chunks)
            output.feed(chunk);
        EXPECT_EQ(output.take(), line) << chunks.first().first(2).constData();
    }
}

// A stand-in Resolve with a project in a folder of its own, and the bridge to it through the real
// interpreter.
class ResolveTest : public testing::Test
{
protected:
    ResolveTest()
    {
        qputenv("PYTHONPATH", STAND_IN_RESOLVE);
        qputenv("PYTHONDONTWRITEBYTECODE", "1");
        qputenv("CRATEWELL_STANDIN_PROJECT", m_project.bytes());
        m_paths.python = m_python;
    }
    // The temporary folder cannot take away names that are no UTF-8.
    ~ResolveTest() override { std::filesystem::remove_all(m_folder.c_str()); }

    // Runs Python statements on the project and returns what they print.
    QString project(const QString &statements)
    {
        QProcess python;
        python.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        python.start(m_python.text(), {u"-c"_s, onTheProject.arg(statements)});
        EXPECT_TRUE(python.waitForFinished() && python.exitCode() == 0) << qPrintable(statements);
        return QString::fromUtf8(python.readAll().trimmed());
    }
    // The same on a fresh project.
    void arrange(const QString &statements)
    {
        QFile::remove(m_project.text());
        project(statements);
    }

    InsertResult insert(const QByteArray &name, AssetKind kind = AssetKind::Video,
                        std::chrono::milliseconds limit = 20s)
    {
        const Location file = m_folder.child(name);
        std::ofstream(file.c_str()).flush();
        ResolveBridge bridge(m_prefs, m_paths, limit);
        return QCoro::waitFor(bridge.insert({.url = file, .kind = kind, .version = {}}));
    }

    // Puts a shell script in the interpreter's place.
    void replacePython(const QByteArray &script)
    {
        m_paths.python = m_folder.child("python3");
        std::filesystem::remove(m_paths.python.c_str());
        std::ofstream(m_paths.python.c_str()) << "#!/bin/sh\n" << script.constData();
        std::filesystem::permissions(m_paths.python.c_str(), std::filesystem::perms::owner_all);
    }

    QTemporaryDir m_temporary;
    const Location m_folder = Location::fromText(m_temporary.path());
    const Location m_project = m_folder.child("project.json");
    const Location m_python = Location::fromBytes("/usr/bin/python3");
    SystemPaths m_paths = SystemPaths::below(m_folder);
    const Location m_request = m_paths.supportFolder().child("resolve-request.json");
    MemoryDefaults m_defaults;
    Prefs m_prefs{m_defaults, m_paths};
};

TEST_F(ResolveTest, AnswersEachFailureWithItsSentenceAndKeepsTheBin)
{
    const QString noProject = u"Open a project in Resolve first."_s;
    const QString noPlace = u"Resolve imported Smoke but could not place it on the timeline."_s;
    const std::pair<QString, QString> cases[] = {
        {u"failures['import'] = 'raise'"_s, queued},
        {u"failures['scriptapp'] = 'none'"_s, queued},
        {u"failures['GetProjectManager'] = 'none'"_s, noProject},
        {u"state['project'] = None"_s, noProject},
        {u"project['current_timeline'] = ''"_s, u"Open a timeline in Resolve first."_s},
        {u"failures['ImportMedia'] = 'none'"_s, u"Resolve could not import Smoke."_s},
        {u"failures['AppendToTimeline'] = 'none'"_s, noPlace},
        // The host drops the overlap and hands back a hollow item.
        {u"failures['AddTrack'] = 'false'; place('V1', 'Talk', 86400, 999)"_s, noPlace},
        {u"failures['ImportMedia'] = 'raise'"_s, u"Resolve error: ImportMedia failed"_s},
    };
    for (const auto &[statements, message] : cases) {
        SCOPED_TRACE(qPrintable(statements));
        arrange(statements);
        const InsertResult result = insert("Smoke.mov");
        EXPECT_FALSE(result.ok);
        EXPECT_EQ(result.message, message);
        EXPECT_EQ(project(u"print((project or {}).get('current_bin', 'Master'))"_s), u"Master"_s);
        EXPECT_EQ(QFile::exists(m_request.text()), message == queued);
    }
}

TEST_F(ResolveTest, PlacesTheClipWhereItIsAskedTo)
{
    using enum AssetKind;
    const QString onV1 = u"V1 Smoke.mov 86652-86772 of 0-120 mode 5"_s;
    const QString onV2 = u"V2 Smoke.mov 86652-86772 of 0-120 mode 5"_s;
    const QString onV3 = u"V3 Smoke.mov 86652-86772 of 0-120 mode 5"_s;
    const QString at29 = u"V2 Smoke.mov 108002-108122 of 0-120 mode 5"_s;
    const QString onA1 = u"A1 Smoke.wav 86652-86724 of 0-72 mode 0 stereo"_s;
    const QString onA2 = u"A2 Smoke.wav 86652-86724 of 0-72 mode 0 stereo"_s;
    const QString plain = u"V2 Smoke.mov 86652-86772 of 0-120 mode 0"_s;
    const struct
    {
        QString arrange, placed;
        AssetKind kind = Video;
        QString track = u"newTop"_s, blend = u"screen"_s;
    } cases[] = {
        // The whole clip in every version; the end frame counts in old ones.
        {u"host['version'] = [18, 6, 6, 7, '']"_s, onV2},
        {u"host['version'] = [19, 0, 0, 25, 'b']"_s, onV2},
        {u"host['version'] = [18, 0, 0, 0, '']; failures['GetVersion'] = 'none'"_s, onV2},
        // Frames by the timeline's rate.
        {u"timeline.update(rate='29.97 DF', playhead='01:00:00;02')"_s, at29},
        {u"timeline.update(rate=29, playhead='01:00:00:02')"_s, at29},
        {u"failures['GetSetting'] = 'none'"_s, onV2},
        // The track: only the top one is looked at, under the whole clip.
        {u"timeline['video'] = []"_s, onV1, Video, u"free"_s},
        {u"timeline['video'].append({'items': []}); place('V2', 'Talk', 86600, 100)"_s, onV3, Video,
         u"free"_s},
        {u"place('V1', 'Later', 86771, 10)"_s, onV2, Video, u"free"_s},
        {u"place('V1', 'Before', 86600, 52); place('V1', 'After', 86772, 10)"_s, onV1, Video, u"free"_s},
        // A clip of 48 frames a second covers half as many frames here.
        {u"media['.mov'] = {'Type': 'Video', 'Frames': '120', 'FPS': '48'}; place('V1', 'After', 86712, 10)"_s,
         u"V1 Smoke.mov 86652-86712 of 0-120 mode 5"_s, Video, u"free"_s},
        {{}, onA1, Audio},
        {u"timeline['audio'] = []"_s, onA1, Audio},
        {u"timeline['audio'] *= 2; timeline['audio'][0] = {'items': []}; place('A1', 'Voice', 86723, 10)"_s,
         onA2, Audio},
        {u"place('A1', 'Voice', 86600, 100); timeline['video'].append({'items': []})"_s, onA2, Audio},
        // Without a range of its own, five seconds as the host's preference says.
        {{}, u"V2 Smoke.png 86652-86772 of 0-120 mode 5"_s, Image},
        {u"failures['GetClipProperty'] = 'raise'"_s, onV1, Video, u"free"_s},
        {{}, u"V2 Smoke.mov 86652-86772 of 0-120 mode 8"_s, Video, u"newTop"_s, u"softLight"_s},
        {{}, plain, Video, u"newTop"_s, u"normal"_s},
        {{}, plain, Video, u"newTop"_s, {}},
        {u"failures['SetProperty'] = 'raise'"_s, plain},
    };
    for (const auto &[statements, placed, kind, track, blend] : cases) {
        SCOPED_TRACE(qPrintable(statements));
        arrange(statements);
        m_prefs.setOverlayTrack(track);
        m_prefs.setBlendMode(blend);
        m_prefs.setApplyBlendOnInsert(!blend.isEmpty());
        const QStringList words = placed.split(u' ');
        const InsertResult result = insert(words[1].toUtf8(), kind);
        EXPECT_TRUE(result.ok);
        EXPECT_TRUE(result.message.startsWith(u"Inserted Smoke on %1 at 01:00:"_s.arg(words[0])));
        EXPECT_EQ(project(printPlaced), placed);
        EXPECT_FALSE(QFile::exists(m_request.text()));
    }
}

// Also with a name that is no UTF-8.
TEST_F(ResolveTest, KeepsItsClipsInOneBinAndTheUsersBinCurrent)
{
    arrange(u"project['pool']['bins'].append({'name': 'Dailies', 'clips': [], 'bins': []});"
            "project['current_bin'] = 'Master/Dailies'"_s);
    EXPECT_EQ(insert("Smoke.mov").message, u"Inserted Smoke on V2 at 01:00:10:12"_s);
    EXPECT_EQ(insert("Dust \"2\" \U0001F525 caf\xe9.mov").message,
              u"Inserted Dust \"2\" \U0001F525 caf\xdce9 on V3 at 01:00:10:12"_s);
    EXPECT_EQ(project(u"print([(b['name'], len(b['clips'])) for b in project['pool']['bins']], "
                      "project['current_bin'])"_s),
              u"[('Dailies', 0), ('Cratewell', 2)] Master/Dailies"_s);
}

TEST_F(ResolveTest, FindsTheAnswerOfAnyInterpreterOrQueues)
{
    const QByteArray answer = R"(printf '{"ok": true, "message": "Done"}\n\n'; )";
    const std::tuple<QByteArray, std::chrono::milliseconds, QString> cases[] = {
        {"exit 0", 20s, queued},
        {R"(echo '{"ok": true, "message": "cut')", 20s, queued},
        {R"(echo '["ok"]')", 20s, queued},
        {R"(echo '{"ok": true}')", 20s, u"Resolve didn't say what happened."_s},
        {answer + "echo last words", 20s, queued},
        {"kill -9 $$", 20s, queued},
        {"trap '' TERM; exec sleep 60", 100ms, queued},
        {"exec yes", 300ms, queued},
        {"head -c 3000000 /dev/zero >&2; seq 100000; " + answer, 20s, u"Done"_s},
        // The answer was there before the process refused to end; a child of it keeps its output open.
        {answer + "sleep 3 & exec sleep 60", 1500ms, u"Done"_s},
    };
    for (const auto &[python, limit, message] : cases) {
        replacePython(python);
        EXPECT_EQ(insert("Smoke.mov", AssetKind::Video, limit).message, message) << python.constData();
        EXPECT_EQ(readExchangeFile(m_request).has_value(), message == queued) << python.constData();
    }
    m_paths.python = m_folder.child("missing");
    EXPECT_EQ(insert("Smoke.mov").message, queued);
}

TEST_F(ResolveTest, GivesTheScriptItsEnvironmentAndAnEndOfItsOwn)
{
    // What is left of the alarm that ends a script 2 s after its watchdog has failed to.
    replacePython(
        "exec /usr/bin/python3 -c 'import json, os, signal\n"
        "names = \"RESOLVE_SCRIPT_API\", \"RESOLVE_SCRIPT_LIB\", \"PYTHONPATH\"\n"
        "facts = [os.environ[name] for name in names] + [os.getcwd(), signal.alarm(0) in (21, 22)]\n"
        "print(json.dumps({\"message\": \" \".join(map(str, facts))}))'");
    const QString api = m_paths.resolveApi.text();
    const QString both = api + u' ' + m_paths.resolveLibrary.text() + u' ';
    EXPECT_EQ(insert("Smoke.mov").message,
              both + QStringLiteral(STAND_IN_RESOLVE) + u':' + api + u"/Modules/ / True"_s);
    qunsetenv("PYTHONPATH");
    EXPECT_EQ(insert("Smoke.mov").message, both + api + u"/Modules/ / True"_s);
}

TEST_F(ResolveTest, PlacesNoRequestButItsOwn)
{
    // Where no new request can be written, the older one stays: not that one is to be placed.
    arrange(u"failures['scriptapp'] = 'none'"_s);
    EXPECT_EQ(insert("Older.mov").message, queued);
    const std::optional<QJsonObject> older = readExchangeFile(m_request);
    ASSERT_TRUE(older);
    EXPECT_EQ((*older)[u"name"].toString(), u"Older"_s);
    arrange({});
    {
        const FileSizeLimit limit(10);
        EXPECT_TRUE(insert("Smoke.mov").message.endsWith(u"resolve-request.json: File too large"_s));
    }
    EXPECT_EQ(readExchangeFile(m_request), older);

    // Another program's request comes between ours and the script.
    replacePython("echo '{\"id\": \"B\", \"path\": \"/v/B.mov\", \"kind\": \"video\"}' > \"$3\"\n"
                  "exec /usr/bin/python3 \"$@\"");
    EXPECT_EQ(insert("Smoke.mov").message, u"Another request came in between. Insert again."_s);
    EXPECT_EQ(project(printPlaced), QString());
    EXPECT_TRUE(readExchangeFile(m_request));
}

TEST_F(ResolveTest, ImportsNothingFromTheCurrentFolder)
{
    std::ofstream(m_folder.child("json.py").c_str())
        << "print('{\"ok\": true, \"message\": \"hostile\"}', flush=True)\nimport os\nos._exit(0)\n";
    arrange({});
    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(m_folder.text()));
    // As an interpreter that does not know the variable; the second runs in that folder whatever we asked.
    for (const QByteArray &start : {QByteArray(), "cd '" + m_folder.bytes() + "'\n"}) {
        replacePython(start + "unset PYTHONSAFEPATH\nexec /usr/bin/python3 \"$@\"");
        EXPECT_EQ(insert("Smoke.mov").message,
                  u"Inserted Smoke on V%1 at 01:00:10:12"_s.arg(start.isEmpty() ? 2 : 3));
    }
    ASSERT_TRUE(QDir::setCurrent(before));
}

TEST_F(ResolveTest, MayGoBeforeTheAnswerComes)
{
    replacePython(R"(echo '{"ok": true, "message": "Done"}')");
    auto bridge = std::make_unique<ResolveBridge>(m_prefs, m_paths);
    const Asset asset{.url = m_folder.child("Smoke.mov"), .kind = AssetKind::Video, .version = {}};
    QCoro::Task<InsertResult> task = bridge->insert(asset);
    bridge.reset();
    EXPECT_TRUE(QCoro::waitFor(std::move(task)).ok);
}

TEST_F(ResolveTest, GivesTheScriptTwentySeconds)
{
    // What is left of the alarm that ends a script 2 s after its watchdog has failed to.
    replacePython("exec /usr/bin/python3 -c 'import json, signal; "
                  "print(json.dumps({\"ok\": True, \"message\": str(signal.alarm(0))}))'");
    ResolveBridge bridge(m_prefs, m_paths);
    const auto answer = QCoro::waitFor(bridge.insert({.url = m_folder.child("a.mov"), .version = {}}));
    EXPECT_NEAR(answer.message.toInt(), 20, 2) << qPrintable(answer.message);
}

} // namespace
} // namespace cratewell::test
