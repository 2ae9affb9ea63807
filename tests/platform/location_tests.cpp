#include "platform/location.h"

#include <QRandomGenerator>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace cratewell {
namespace {

// "this -> that" as pairs.
std::vector<std::pair<QByteArray, QByteArray>> arrows(std::initializer_list<QByteArray> lines)
{
    std::vector<std::pair<QByteArray, QByteArray>> pairs;
    for (const QByteArray &line : lines) {
        const qsizetype arrow = line.indexOf(" -> ");
        pairs.emplace_back(line.first(arrow), line.sliced(arrow + 4));
    }
    return pairs;
}

Location at(QByteArrayView path)
{
    return Location::fromBytes(path);
}

TEST(Location, ComesFromAbsolutePathsAndLocalFileUrisOnly)
{
    for (const auto &[path, expected] :
         arrows({"// -> /", "//a///b// -> /a/b", "/a/./b/. -> /a/b", "/a/../b -> /b", "/../../a -> /a",
                 "/a/b/../.. -> /", "/a/... -> /a/...", "/ a /\xFF\n -> / a /\xFF\n", " -> ", "a/b -> ",
                 QByteArray("/a\0b -> ", 8)}))
        EXPECT_EQ(at(path).bytes(), expected) << path.constData();
    for (const auto &[uri, expected] :
         arrows({"file:///a/b -> /a/b", "FILE://localhost/a -> /a", "file:/a -> /a",
                 "file:///a%2Fb/../c -> /a/c", "file:///a?query#part -> /a",
                 "file:///broken%zz%4 -> /broken%zz%4", "file://server/share -> ", "file:// -> ",
                 "http:///a -> ", "/a -> ", "file:///a%00b -> "}))
        EXPECT_EQ(Location::fromUri(uri).bytes(), expected) << uri.constData();
}

TEST(Location, SplitsPathsIntoParentBaseNameAndExtension)
{
    const QByteArray cases = "/v/Hit.wav|/v|Hit|wav /v/a.tar.GZ|/v|a.tar|GZ /v/.cube|/v|.cube| "
                             "/v/..cube|/v|.|cube /v.x/plain|/v.x|plain| /end.|/|end.| /|/|| |||";
    for (const QByteArray &line : cases.split(' ')) {
        const QByteArrayList parts = line.split('|');
        const Location place = at(parts[0]);
        EXPECT_EQ(place.parent().bytes(), parts[1]) << line.constData();
        EXPECT_EQ(place.baseName().toUtf8(), parts[2]) << line.constData();
        EXPECT_EQ(place.extension().toUtf8(), parts[3]) << line.constData();
    }
}

TEST(Location, KnowsChildrenAndWhatLiesInside)
{
    EXPECT_EQ(at("/").child("a"), at("/a"));
    EXPECT_EQ(at("/a").child(QStringLiteral("b\u00e9")).bytes(), "/a/b\xC3\xA9");
    for (const QByteArray &name : QByteArrayList{"", ".", "..", "x/y", QByteArray("x\0", 2)})
        EXPECT_TRUE(at("/a").child(name).isEmpty()) << name.constData();
    EXPECT_TRUE(at("/a/Hit/x").isInside(at("/a/Hit")) && at("/a/Hit/x").isInside(at("/")));
    for (const auto &[inner, outer] :
         arrows({"/a/Hits -> /a/Hit", "/a/Hit -> /a/Hit", "/a -> /a/Hit", "/ -> /", "/a -> "}))
        EXPECT_FALSE(at(inner).isInside(at(outer))) << inner.constData();
}

TEST(Location, CarriesAnyBytesThroughTextAndUris)
{
    const QByteArrayList names =
        QByteArray("caf\xC3\xA9|\xF0\x9F\x8E\xAC emoji|100% %20 #?;&|\xFF\xFE|ok\xC3|\xED\xB2\x80 surrogate|"
                   "\xC0\xAF|\xF4\x90\x80\x80|\xEF\xBB\xBF\xEF\xBB\xBF\xFFmark|a\xF0\x9F\x8E\xFFz|"
                   "\xEF\xBF\xBD replacement|\xC2\x80")
            .split('|');
    for (const QByteArray &name : names) {
        const Location place = at("/v").child(name);
        EXPECT_EQ(Location::fromText(place.text()), place) << name.toHex().constData();
        EXPECT_EQ(Location::fromUri(place.uri()), place) << name.toHex().constData();
        EXPECT_EQ(Location::fromUrl(QUrl::fromEncoded(place.uri())), place) << name.toHex().constData();
    }
    EXPECT_EQ(textFromBytes("a\xFFz \xF0\x9F\x8E\xAC"), QStringLiteral("a\xDCFFz \U0001F3AC"));
    EXPECT_EQ(at("/a b/\xFF#").uri(), "file:///a%20b/%FF%23");

    QRandomGenerator random(7);
    for (int round = 0; round < 20'000; ++round) {
        QByteArray bytes;
        for (int i = int(random.bounded(12)); i >= 0; --i)
            bytes += char(random.bounded(4) ? 0x80 + random.bounded(0x80) : random.bounded(0x80));
        ASSERT_EQ(bytesFromText(textFromBytes(bytes)), bytes) << bytes.toHex().constData();
    }
}

TEST(Location, ResolvesLinksAsFarAsThePathExists)
{
    const QTemporaryDir folder;
    const Location root = Location::fromText(folder.path()).resolved();
    ASSERT_EQ(::mkdir(root.child("real").c_str(), 0700), 0);
    for (const auto &[link, target] : arrows({"link -> real", "dangling -> gone", "loop -> loop"}))
        ASSERT_EQ(::symlink(target.constData(), root.child(link).c_str()), 0);
    for (const auto &[path, expected] : arrows({"/link/missing/deeper -> /real/missing/deeper",
                                                "/dangling/x -> /dangling/x", "/loop/x -> /loop/x"}))
        EXPECT_EQ(at(root.bytes() + path).resolved().bytes(), root.bytes() + expected);
    for (const QByteArray &place : QByteArrayList{"/", "/no-such-folder/x", ""})
        EXPECT_EQ(at(place).resolved().bytes(), place);
}

} // namespace
} // namespace cratewell
