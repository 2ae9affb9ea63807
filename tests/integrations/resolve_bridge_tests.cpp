#include "integrations/internal/exchange_file.h"
#include "integrations/internal/python_run.h"
#include "integrations/resolve_bridge.h"
#include "platform/fakes/memory_defaults.h"
#include "stand_in_resolve.h"
#include "state/prefs.h"
#include "support/file_size_limit.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QRegularExpression>
#include <gtest/gtest.h>
#include <unistd.h>

namespace cratewell::test {
namespace {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

const QString queued =
    u"Queued for Resolve. Choose Workspace › Scripts › Cratewell Insert in Resolve to place "
    "it. To make this one click, allow Cratewell in System Settings › Privacy & Security › "
    "Accessibility."_s;

TEST(LastLine, IsTheLastOneThatIsNotEmpty)
{
    const std::pair<QByteArrayList, std::optional<QString>> cases[] = {
        {{}, {}},
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
        EXPECT_EQ(output.take(), line) << (chunks.isEmpty() ? "" : chunks.first().first(5).constData());
    }
}

TEST(ResolveAnswer, BecomesAResultOrNothing)
{
    const QString silent = u"Resolve didn't say what happened."_s;
    // No message: no usable answer.
    const std::tuple<QString, bool, QString> cases[] = {
        {uR"({"ok": true, "message": "Inserted"})"_s, true, u"Inserted"_s},
        {uR"({"ok": false, "message": "Open a project"})"_s, false, u"Open a project"_s},
        {uR"({"ok": true})"_s, true, silent},
        {uR"({"ok": 1, "message": 2})"_s, false, silent},
        {uR"({"code": "other", "message": "x"})"_s, false, u"x"_s},
        {uR"({})"_s, false, silent},
        {uR"({"ok": false, "code": "no-external"})"_s, false, {}},
        {uR"(["ok"])"_s, false, {}},
        {uR"({"ok": tru)"_s, false, {}},
    };
    for (const auto &[line, ok, message] : cases) {
        const std::optional<InsertResult> result = resolveResult(line);
        ASSERT_EQ(result.has_value(), !message.isEmpty()) << qPrintable(line);
        if (!result)
            continue;
        EXPECT_EQ(result->ok, ok) << qPrintable(line);
        EXPECT_EQ(result->message, message) << qPrintable(line);
    }
    EXPECT_FALSE(resolveResult({}));
}

TEST(BlendNumbers, AreThoseOfResolve)
{
    QList<int> numbers;
    for (const BlendMode mode : allBlendModes)
        numbers += ResolveBridge::blendNumber(mode);
    EXPECT_EQ(numbers, (QList{0, 5, 1, 6, 8, 4}));
}

// The bridge on a home of its own. The program's environment leads the interpreter to the stand-in.
class ResolveBridgeTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_resolve.arrange({}));
        const QProcessEnvironment environment = m_resolve.environment();
        for (const char *name : {"PYTHONPATH", "PYTHONDONTWRITEBYTECODE", "CRATEWELL_STANDIN_PROJECT"})
            qputenv(name, environment.value(QString::fromLatin1(name)).toUtf8());
        m_paths.python = StandInResolve::interpreter();
    }
    void TearDown() override
    {
        for (const char *name : {"PYTHONPATH", "PYTHONDONTWRITEBYTECODE", "CRATEWELL_STANDIN_PROJECT"})
            qunsetenv(name);
    }

    InsertResult insert(std::chrono::milliseconds limit = 20s)
    {
        ResolveBridge bridge(m_prefs, m_paths, limit);
        return QCoro::waitFor(bridge.insert(m_asset));
    }

    // A program in the interpreter's place.
    void replacePython(const QByteArray &shellScript)
    {
        m_paths.python = m_resolve.folder().child("python3");
        QFile file(m_paths.python.text());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\n" + shellScript);
        file.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    }

    StandInResolve m_resolve;
    SystemPaths m_paths = SystemPaths::below(m_resolve.folder());
    MemoryDefaults m_defaults;
    Prefs m_prefs{m_defaults, m_paths};
    Asset m_asset{.url = m_resolve.file("Smoke.mov"), .kind = AssetKind::Video, .version = {}};
    Location m_request = m_paths.supportFolder().child("resolve-request.json");
};

TEST_F(ResolveBridgeTest, PlacesAnAssetAndTakesTheRequestBack)
{
    m_prefs.setBlendMode(u"softLight"_s);
    const InsertResult result = insert();
    EXPECT_TRUE(result.ok);
    EXPECT_EQ(result.message, u"Inserted Smoke on V2 at 01:00:10:12"_s);
    EXPECT_EQ(m_resolve.placed(), QStringList(u"V2 Smoke.mov 86652-86772 of 0-120 mode 8"_s));
    EXPECT_FALSE(QFile::exists(m_request.text()));

    ASSERT_TRUE(m_resolve.arrange(u"state['project'] = None"_s));
    const InsertResult refused = insert();
    EXPECT_FALSE(refused.ok);
    EXPECT_EQ(refused.message, u"Open a project in Resolve first."_s);
    EXPECT_FALSE(QFile::exists(m_request.text()));
}

TEST_F(ResolveBridgeTest, QueuesWhateverGivesNoUsableAnswer)
{
    const std::pair<QByteArray, std::chrono::milliseconds> cases[] = {
        {"exit 0", 20s},
        {"echo '{\"ok\": true, \"message\": \"cut", 20s},
        {"echo '{\"ok\": true, \"message\": \"Done\"}'; echo last words", 20s},
        {"kill -9 $$", 20s},
        {"exec sleep 60", 100ms},
        {"trap '' TERM; exec sleep 60", 100ms},
        {"exec yes", 300ms},
    };
    for (const auto &[python, limit] : cases) {
        replacePython(python);
        EXPECT_EQ(insert(limit).message, queued) << python.constData();
        EXPECT_TRUE(readExchangeFile(m_request)) << python.constData();
    }
    m_paths.python = m_resolve.folder().child("missing");
    EXPECT_EQ(insert().message, queued);
}

TEST_F(ResolveBridgeTest, FindsTheAnswerAmongNoiseAndAfterAHang)
{
    const QByteArray answer = "printf '{\"ok\": true, \"message\": \"Done\"}\\n\\n'\n";
    replacePython("head -c 3000000 /dev/zero >&2; seq 100000\n" + answer);
    EXPECT_EQ(insert().message, u"Done"_s);
    // The answer was there before the process refused to end; a child of it keeps its output open.
    replacePython(answer + "sleep 3 &\nexec sleep 60");
    EXPECT_EQ(insert(1500ms).message, u"Done"_s);
}

TEST_F(ResolveBridgeTest, GivesAScriptTwentySeconds)
{
    // What is left of the alarm that ends a script 2 s after its watchdog has failed to.
    replacePython("exec /usr/bin/python3 -c 'import json, signal; "
                  "print(json.dumps({\"ok\": True, \"message\": str(signal.alarm(0))}))'");
    ResolveBridge bridge(m_prefs, m_paths);
    const int left = QCoro::waitFor(bridge.insert(m_asset)).message.toInt();
    EXPECT_GT(left, 18);
    EXPECT_LE(left, 22);
}

TEST_F(ResolveBridgeTest, GivesTheScriptItsEnvironment)
{
    replacePython("printf '{\"ok\": true, \"message\": \"%s|%s|%s|%s\"}' \"$RESOLVE_SCRIPT_API\" "
                  "\"$RESOLVE_SCRIPT_LIB\" "
                  "\"$(pwd)\" \"$PYTHONPATH\"");
    const QString api = m_paths.resolveApi.text();
    const QString both = api + u'|' + m_paths.resolveLibrary.text() + u"|/|"_s;
    EXPECT_EQ(insert().message, both + qEnvironmentVariable("PYTHONPATH") + u':' + api + u"/Modules/"_s);
    qunsetenv("PYTHONPATH");
    EXPECT_EQ(insert().message, both + api + u"/Modules/"_s);
}

TEST_F(ResolveBridgeTest, QueuesWithoutResolveAndFailsWithTheSystemsWordsWhereItCannotWrite)
{
    ASSERT_TRUE(m_resolve.arrange(u"failures['scriptapp'] = 'none'"_s));
    InsertResult result = insert();
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.message, queued);
    const std::optional<QJsonObject> older = readExchangeFile(m_request);
    ASSERT_TRUE(older);
    EXPECT_EQ((*older)[u"path"].toString(), m_asset.url.text());
    EXPECT_EQ((*older)[u"blend"].toInt(), 5);

    // The older request stays where no new one can come: not that one is to be placed.
    ASSERT_TRUE(m_resolve.arrange({}));
    {
        const FileSizeLimit limit(10);
        result = insert();
    }
    EXPECT_FALSE(result.ok);
    EXPECT_TRUE(result.message.endsWith(u"resolve-request.json: File too large"_s))
        << qPrintable(result.message);
    EXPECT_EQ(m_resolve.placed(), QStringList());
    EXPECT_EQ(readExchangeFile(m_request), older);
}

TEST_F(ResolveBridgeTest, PlacesNoRequestButItsOwn)
{
    // Another program's request comes between ours and the script.
    replacePython("echo '{\"id\": \"B\", \"path\": \"/v/B.mov\", \"kind\": \"video\"}' > \"$3\"\n"
                  "exec /usr/bin/python3 \"$@\"");
    EXPECT_EQ(insert().message, u"Another request came in between. Insert again."_s);
    EXPECT_EQ(m_resolve.placed(), QStringList());
    EXPECT_TRUE(readExchangeFile(m_request));
}

TEST_F(ResolveBridgeTest, ImportsNothingFromTheCurrentFolder)
{
    const Location folder = m_resolve.folder().child("cwd");
    ASSERT_TRUE(QDir().mkdir(folder.text()));
    QFile module(folder.child("json.py").text());
    ASSERT_TRUE(module.open(QIODevice::WriteOnly));
    module.write("print('{\"ok\": true, \"message\": \"hostile\"}', flush=True)\nimport os\nos._exit(0)\n");
    module.close();
    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(folder.text()));
    // As an interpreter that does not know the variable; the second runs in that folder whatever we asked.
    for (const QByteArray &start : {QByteArray(), "cd '" + folder.bytes() + "'\n"}) {
        replacePython(start + "unset PYTHONSAFEPATH\nexec /usr/bin/python3 \"$@\"");
        EXPECT_EQ(insert().message, u"Inserted Smoke on V%1 at 01:00:10:12"_s.arg(start.isEmpty() ? 2 : 3));
    }
    ASSERT_TRUE(QDir::setCurrent(before));
}

TEST_F(ResolveBridgeTest, MayGoBeforeTheAnswerComes)
{
    auto bridge = std::make_unique<ResolveBridge>(m_prefs, m_paths);
    QCoro::Task<InsertResult> task = bridge->insert(m_asset);
    bridge.reset();
    EXPECT_TRUE(QCoro::waitFor(std::move(task)).ok);
}

} // namespace
} // namespace cratewell::test
