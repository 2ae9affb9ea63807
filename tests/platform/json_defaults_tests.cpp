#include "platform/json_defaults.h"

#include "platform/mac/user_defaults.h"
#include "platform/posix/replace_file.h"
#include "support/child.h"
#include "support/wait.h"

#include <QCoreApplication>
#include <QDataStream>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTimer>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace cratewell {
namespace {

using namespace Qt::StringLiterals;

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

void write(const QString &path, const QByteArray &content)
{
    ASSERT_TRUE(replaceAtomically(Location::fromText(path), content, {.flush = Flush::No}));
}

class JsonDefaultsTest : public testing::Test
{
protected:
    QString path(const QString &name) const { return m_folder.filePath(name); }
    Location file() const { return Location::fromText(path(u"defaults.json"_s)); }
    QStringList names() const
    {
        return QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    }

private:
    QTemporaryDir m_folder;
};

TEST_F(JsonDefaultsTest, EveryStoreKeepsTypesApartAcrossRuns)
{
    const QJsonObject shared = QJsonDocument::fromJson(R"({
        "yes": true, "no": false, "zero": 0, "share": 0.7, "large": 9007199254740991, "empty": "",
        "text": "caf\u00e9 \ud83c\udfac \"quoted\"\n\u2028", "list": ["a", "b"], "map": {"/v/a.b": "#fff"},
        "expanded./v/a": true, "expanded.//v%2F\\a/": 3})")
                                   .object();
    QJsonObject inJson = shared;
    inJson.insert(u"expanded./v/"_s + QChar(0xDCFF), QString(QChar(0xDC80)));
    inJson.insert(u"nested"_s, QJsonArray{u"a"_s, QJsonArray(), 1});
    inJson.insert(u"null"_s, QJsonValue());
    // Keeps types, as the native format does on its own system.
    const QSettings::Format typed = QSettings::registerFormat(
        u"typed"_s,
        [](QIODevice &device, QSettings::SettingsMap &map) {
            QDataStream stream(&device);
            return (stream >> map).status() == QDataStream::Ok;
        },
        [](QIODevice &device, const QSettings::SettingsMap &map) {
            QDataStream stream(&device);
            return (stream << map).status() == QDataStream::Ok;
        });
    using Open = std::function<std::unique_ptr<Defaults>()>;
    const std::pair<Open, QJsonObject> stores[] = {
        {[this] { return std::make_unique<JsonDefaults>(file()); }, inJson},
        {[this, typed] {
             return std::make_unique<UserDefaults>(std::make_unique<QSettings>(path(u"typed"_s), typed));
         },
         shared}};
    for (const auto &[open, written] : stores) {
        std::unique_ptr<Defaults> defaults = open();
        for (auto entry = written.begin(); entry != written.end(); ++entry)
            defaults->setValue(entry.key(), entry.value());
        defaults->setValue(u"removed"_s, 1);
        defaults->remove(u"removed"_s);
        EXPECT_EQ(defaults->value(u"share"_s), QJsonValue(0.7));
        defaults->drain();
        defaults.reset();
        defaults = open();
        for (auto entry = written.begin(); entry != written.end(); ++entry)
            EXPECT_EQ(defaults->value(entry.key()), entry.value()) << entry.key().toStdString();
        for (const QString &absent : {u"removed"_s, u"never"_s, u"expanded"_s})
            EXPECT_TRUE(defaults->value(absent).isUndefined()) << qPrintable(absent);

        EXPECT_EQ(defaults->boolean(u"no"_s), false);
        EXPECT_EQ(defaults->boolean(u"zero"_s), std::nullopt);
        EXPECT_EQ(defaults->boolean(u"never"_s), std::nullopt);
        EXPECT_EQ(defaults->number(u"zero"_s), 0.0);
        EXPECT_EQ(defaults->number(u"no"_s), std::nullopt);
        EXPECT_EQ(defaults->string(u"empty"_s), QString());
        EXPECT_EQ(defaults->string(u"share"_s), std::nullopt);
    }
}

TEST_F(JsonDefaultsTest, KeepsAsideWhatItCannotReadAndNeverOverwritesIt)
{
    const QByteArray unreadable[] = {
        "", "{\"a\": 1", "[1, 2]", "{\"a\": 1} trailing", "\xFF\xFE\0garbage", QByteArray(5000, '[')};
    QStringList expected = {u"defaults.json"_s};
    for (int i = 0; i < int(std::size(unreadable)); ++i) {
        write(path(u"defaults.json"_s), unreadable[i]);
        JsonDefaults defaults(file());
        EXPECT_TRUE(defaults.value(u"a"_s).isUndefined());
        defaults.setValue(u"a"_s, 2);
        defaults.drain();
        EXPECT_EQ(QJsonDocument::fromJson(contentOf(path(u"defaults.json"_s))).object(),
                  (QJsonObject{{u"a"_s, 2}}));
        expected += u"defaults.json.kept"_s + (i == 0 ? QString() : u"-%1"_s.arg(i + 1));
        EXPECT_EQ(contentOf(path(expected.last())), unreadable[i]);
    }
    ASSERT_TRUE(QFile::remove(path(u"defaults.json"_s)));
    ASSERT_TRUE(QDir().mkdir(path(u"defaults.json"_s)));
    JsonDefaults(file()).setValue(u"a"_s, 3);
    expected += u"defaults.json.kept-%1"_s.arg(std::size(unreadable) + 1);
    expected.sort();
    EXPECT_EQ(names(), expected);
    EXPECT_EQ(JsonDefaults(file()).number(u"a"_s), 3.0);
}

TEST_F(JsonDefaultsTest, MakesItsFolderFollowsALinkAndLeavesNoTemporaryFiles)
{
    const Location deep = Location::fromText(path(u"new/folder/defaults.json"_s));
    JsonDefaults(deep).setValue(u"a"_s, 1);
    EXPECT_EQ(JsonDefaults(deep).number(u"a"_s), 1.0);

    ASSERT_EQ(::symlink("new/folder/defaults.json", file().c_str()), 0);
    write(path(u"new/folder/defaults.json.999999999-0123456789abcdef.new"_s), "{ torn");
    write(path(u"new/folder/defaults.json.own.new"_s), "somebody else's");
    JsonDefaults(file()).setValue(u"a"_s, 2);
    EXPECT_TRUE(QFileInfo(path(u"defaults.json"_s)).isSymLink());
    EXPECT_EQ(JsonDefaults(deep).number(u"a"_s), 2.0);
    EXPECT_EQ(QDir(path(u"new/folder"_s)).entryList(QDir::Files),
              QStringList({u"defaults.json"_s, u"defaults.json.own.new"_s}));
}

TEST_F(JsonDefaultsTest, WorksInMemoryWhereNothingCanBeWritten)
{
    write(path(u"file"_s), "no folder");
    for (const Location &place : {Location::fromText(path(u"file/defaults.json"_s)),
                                  Location::fromBytes("/proc/cratewell/defaults.json"), Location()}) {
        JsonDefaults defaults(place);
        defaults.setValue(u"a"_s, u"kept"_s);
        defaults.drain();
        EXPECT_EQ(defaults.string(u"a"_s), u"kept"_s);
    }
    EXPECT_EQ(contentOf(path(u"file"_s)), "no folder");
}

TEST_F(JsonDefaultsTest, WritesABurstInAFewWritesAndDrainsTheNewest)
{
    JsonDefaults defaults(file());
    for (int i = 1; i <= 2000; ++i)
        defaults.setValue(u"key%1"_s.arg(i % 50), i);
    defaults.drain();
    const QJsonObject stored = QJsonDocument::fromJson(contentOf(path(u"defaults.json"_s))).object();
    EXPECT_EQ(stored.size(), 50);
    EXPECT_EQ(stored.value(u"key0"_s).toInt(), 2000);

    struct stat before = {};
    ASSERT_EQ(::stat(file().c_str(), &before), 0);
    defaults.setValue(u"key0"_s, 2000);
    defaults.remove(u"absent"_s);
    defaults.drain();
    struct stat after = {};
    ASSERT_EQ(::stat(file().c_str(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino) << "what changes nothing is not written";
}

// Started by the test below in a process of its own.
TEST(JsonDefaultsChild, DISABLED_CountsUntilItIsKilled)
{
    JsonDefaults defaults(Location::fromBytes(qgetenv("CRATEWELL_TEST_FILE")));
    QTimer timer;
    int count = 0;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        defaults.setValue(u"count"_s, ++count);
        defaults.setValue(u"filler%1"_s.arg(count % 500), QString(200, u'x'));
        test::report("count " + QByteArray::number(count));
    });
    timer.start(5);
    QCoreApplication::exec();
}

TEST_F(JsonDefaultsTest, LosesNothingOlderThanASecondWhenKilled)
{
    for (int round = 0; round < 3; ++round) {
        test::Child child(u"JsonDefaultsChild.DISABLED_CountsUntilItIsKilled"_s,
                          {.environment = {{u"CRATEWELL_TEST_FILE"_s, file().text()}}});
        QElapsedTimer clock;
        QList<std::pair<qint64, int>> reported;
        ASSERT_TRUE(test::waitUntil([&] {
            const QByteArray last = child.output().mid(child.output().lastIndexOf("count "));
            if (!clock.isValid() && !last.isEmpty())
                clock.start();
            reported.emplace_back(clock.isValid() ? clock.elapsed() : 0, last.mid(6).toInt());
            return reported.last().first > 1500 + round * 37;
        }));
        child.kill();
        const qint64 killed = clock.elapsed();
        int owed = 0;
        for (const auto &[time, count] : reported)
            owed = time < killed - 1000 ? count : owed;
        ASSERT_GT(owed, 10);
        const JsonDefaults after(file());
        EXPECT_GE(after.number(u"count"_s).value_or(0), owed);
        EXPECT_FALSE(names().contains(u"defaults.json.kept"_s));
    }
}

} // namespace
} // namespace cratewell
