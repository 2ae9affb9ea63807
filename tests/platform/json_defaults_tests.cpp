#include "platform/json_defaults.h"

#include "platform/mac/user_defaults.h"
#include "platform/posix/file_content.h"
#include "platform/posix/replace_file.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <unistd.h>

namespace cratewell {
namespace {

using namespace Qt::StringLiterals;

class JsonDefaultsTest : public testing::Test
{
protected:
    Location at(const QByteArray &path) const
    {
        return Location::fromBytes(m_folder.path().toUtf8() + '/' + path);
    }
    void write(const QByteArray &path, const QByteArray &content) const
    {
        ASSERT_TRUE(replaceAtomically(at(path), content, {.flush = Flush::No}));
    }
    QByteArray read(const QByteArray &path) const
    {
        return readBounded(at(path), 1 << 20, Links::NoFollow).value_or("unreadable");
    }
    QStringList names(const QString &folder = {}) const
    {
        return QDir(m_folder.filePath(folder)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    }

    const QTemporaryDir m_folder;
    const Location m_file = at("defaults.json");
};

TEST_F(JsonDefaultsTest, EveryStoreKeepsTypesApart)
{
    QJsonObject written = QJsonDocument::fromJson(R"({
        "yes": true, "no": false, "zero": 0, "share": 0.7, "large": 9007199254740991, "empty": "",
        "text": "caf\u00e9 \ud83c\udfac \"quoted\"\n\u2028", "list": ["a", "b"], "map": {"/v/a.b": "#fff"},
        "expanded./v/a": true, "expanded.//v/a/": 3, "expanded.%2Fv%2Fa": 4})")
                              .object();
    const auto fill = [&](Defaults &defaults) {
        for (auto entry = written.begin(); entry != written.end(); ++entry)
            defaults.setValue(entry.key(), entry.value());
        defaults.setValue(u"removed"_s, 1);
        defaults.remove(u"removed"_s);
    };
    const auto check = [&](const Defaults &defaults) {
        for (auto entry = written.begin(); entry != written.end(); ++entry)
            EXPECT_EQ(defaults.value(entry.key()), entry.value()) << qPrintable(entry.key());
        for (const QString &absent : {u"removed"_s, u"never"_s, u"expanded"_s})
            EXPECT_TRUE(defaults.value(absent).isUndefined()) << qPrintable(absent);
        EXPECT_EQ(defaults.boolean(u"no"_s), false);
        EXPECT_EQ(defaults.boolean(u"zero"_s), std::nullopt);
        EXPECT_EQ(defaults.number(u"zero"_s), 0.0);
        EXPECT_EQ(defaults.string(u"empty"_s), QString());
        EXPECT_EQ(defaults.string(u"share"_s), std::nullopt);
    };
    UserDefaults native(std::make_unique<QSettings>(at("native").text(), QSettings::IniFormat));
    fill(native);
    check(native);

    written.insert(u"expanded./v/"_s + QChar(0xDCFF), QString(QChar(0xDC80)));
    written.insert(u"nested"_s, QJsonArray{u"a"_s, QJsonArray(), 1, QJsonValue()});
    {
        JsonDefaults defaults(m_file);
        fill(defaults);
    }
    check(JsonDefaults(m_file));
}

TEST_F(JsonDefaultsTest, KeepsAsideWhatItCannotReadAndNeverOverwritesIt)
{
    QStringList expected = {u"defaults.json"_s};
    for (const QByteArray &unreadable : QByteArrayList{"", "{\"a\": 1", "[1, 2]", QByteArray(5000, '[')}) {
        write("defaults.json", unreadable);
        JsonDefaults(m_file).setValue(u"a"_s, 2);
        EXPECT_EQ(JsonDefaults(m_file).number(u"a"_s), 2);
        const qsizetype count = expected.size();
        expected += u"defaults.json.kept"_s + (count == 1 ? QString() : u"-%1"_s.arg(count));
        EXPECT_EQ(read(expected.last().toUtf8()), unreadable);
    }
    ASSERT_TRUE(QFile::remove(m_file.text()));
    ASSERT_TRUE(QDir().mkdir(m_file.text()));
    JsonDefaults(m_file).setValue(u"a"_s, 3);
    EXPECT_EQ(JsonDefaults(m_file).number(u"a"_s), 3);
    EXPECT_EQ(names(), expected << u"defaults.json.kept-5"_s);
}

TEST_F(JsonDefaultsTest, MakesItsFolderFollowsALinkAndLeavesNoTemporaryFiles)
{
    const Location deep = at("new/folder/defaults.json");
    JsonDefaults(deep).setValue(u"a"_s, 1);
    EXPECT_EQ(JsonDefaults(deep).number(u"a"_s), 1);

    ASSERT_EQ(::symlink("new/folder/defaults.json", m_file.c_str()), 0);
    write("new/folder/defaults.json.999999999-0123456789abcdef.new", "{ torn");
    write("new/folder/defaults.json.own.new", "somebody else's");
    JsonDefaults(m_file).setValue(u"a"_s, 2);
    EXPECT_TRUE(QFileInfo(m_file.text()).isSymLink());
    EXPECT_EQ(JsonDefaults(deep).number(u"a"_s), 2);
    EXPECT_EQ(names(u"new/folder"_s), QStringList({u"defaults.json"_s, u"defaults.json.own.new"_s}));
}

TEST_F(JsonDefaultsTest, WorksInMemoryWhereNothingCanBeWritten)
{
    for (const Location &place : {Location::fromBytes("/proc/cratewell/defaults.json"), Location()}) {
        JsonDefaults defaults(place);
        defaults.setValue(u"a"_s, u"kept"_s);
        defaults.drain();
        EXPECT_EQ(defaults.string(u"a"_s), u"kept"_s);
    }
}

TEST_F(JsonDefaultsTest, DrainsTheNewestOfABurst)
{
    JsonDefaults defaults(m_file);
    for (int i = 1; i <= 2000; ++i)
        defaults.setValue(u"key%1"_s.arg(i % 50), i);
    defaults.drain();
    const QJsonObject stored = QJsonDocument::fromJson(read("defaults.json")).object();
    EXPECT_EQ(stored.size(), 50);
    EXPECT_EQ(stored.value(u"key0"_s).toInt(), 2000);
}

} // namespace
} // namespace cratewell
