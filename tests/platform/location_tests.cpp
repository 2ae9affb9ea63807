#include "platform/location.h"

#include <QRandomGenerator>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace cratewell {

namespace {

Location at(QByteArrayView path)
{
    return Location::fromBytes(path);
}

TEST(Location, StandardizesAbsolutePathsAndRefusesTheRest)
{
    const std::pair<QByteArray, QByteArray> cases[] = {
        {"/", "/"},
        {"//", "/"},
        {"/a", "/a"},
        {"/a/", "/a"},
        {"//a///b//", "/a/b"},
        {"/a/./b/.", "/a/b"},
        {"/a/../b", "/b"},
        {"/../../a", "/a"},
        {"/a/b/../..", "/"},
        {"/a/...", "/a/..."},
        {"/ a /\xFF\n", "/ a /\xFF\n"},
        {"", ""},
        {"a/b", ""},
        {"~/a", ""},
        {QByteArray("/a\0b", 4), ""},
    };
    for (const auto &[input, expected] : cases)
        EXPECT_EQ(at(input).bytes(), expected) << input.constData();
}

TEST(Location, SplitsNamesAtTheLastDot)
{
    struct Case
    {
        QByteArray path, name, base, extension;
    };
    const Case cases[] = {
        {"/v/Hit.wav", "Hit.wav", "Hit", "wav"},
        {"/v/a.tar.GZ", "a.tar.GZ", "a.tar", "GZ"},
        {"/v/.cube", ".cube", ".cube", ""},
        {"/v/..cube", "..cube", ".", "cube"},
        {"/v/plain", "plain", "plain", ""},
        {"/v.x/plain", "plain", "plain", ""},
        {"/v/end.", "end.", "end.", ""},
        {"/v/.hidden.png", ".hidden.png", ".hidden", "png"},
        {"/v/a b.m p4", "a b.m p4", "a b", "m p4"},
        {"/", "", "", ""},
        {"", "", "", ""},
    };
    for (const Case &c : cases) {
        const Location place = at(c.path);
        EXPECT_EQ(place.name().toUtf8(), c.name) << c.path.constData();
        EXPECT_EQ(place.baseName().toUtf8(), c.base) << c.path.constData();
        EXPECT_EQ(place.extension().toUtf8(), c.extension) << c.path.constData();
    }
}

TEST(Location, KnowsParentsChildrenAndWhatLiesInside)
{
    EXPECT_EQ(at("/a/b").parent(), at("/a"));
    EXPECT_EQ(at("/a").parent(), at("/"));
    EXPECT_EQ(at("/").parent(), at("/"));
    EXPECT_TRUE(Location().parent().isEmpty());
    EXPECT_EQ(at("/").child("a"), at("/a"));
    EXPECT_EQ(at("/a").child(QStringLiteral("b\u00e9")).bytes(), "/a/b\xC3\xA9");
    for (const QByteArray &name :
         {QByteArray(), QByteArray("."), QByteArray(".."), QByteArray("x/y"), QByteArray("x\0", 2)})
        EXPECT_TRUE(at("/a").child(name).isEmpty()) << name.constData();
    EXPECT_TRUE(Location().child("a").isEmpty());

    EXPECT_TRUE(at("/a/Hit/x").isInside(at("/a/Hit")));
    EXPECT_TRUE(at("/a/Hit/x").isInside(at("/")));
    EXPECT_FALSE(at("/a/Hits").isInside(at("/a/Hit")));
    EXPECT_FALSE(at("/a/Hit").isInside(at("/a/Hit")));
    EXPECT_FALSE(at("/a").isInside(at("/a/Hit")));
    EXPECT_FALSE(at("/").isInside(at("/")));
    EXPECT_FALSE(at("/a").isInside(Location()));
}

TEST(Location, CarriesAnyBytesThroughTextAndUris)
{
    const QByteArray names[] = {
        "plain",
        "caf\xC3\xA9",
        "\xF0\x9F\x8E\xAC emoji",
        "100% %20 #?;&",
        "\xFF\xFE",
        "ok\xC3",
        "\xC3\x28",
        "\xED\xB2\x80 encoded surrogate",
        "\xC0\xAF",
        "\xF4\x90\x80\x80",
        "\xEF\xBB\xBFmark",
        "\xEF\xBB\xBF\xEF\xBB\xBF\xFFmark",
        "\xE2\x82",
        "a\xF0\x9F\x8E\xFFz",
        "\xEF\xBF\xBD replacement",
        "\xC2\x80",
    };
    for (const QByteArray &name : names) {
        const Location place = at("/v").child(name);
        EXPECT_EQ(Location::fromText(place.text()), place) << name.toHex().constData();
        EXPECT_EQ(Location::fromUri(place.uri()), place) << name.toHex().constData();
        EXPECT_EQ(Location::fromUrl(QUrl::fromEncoded(place.uri())), place) << name.toHex().constData();
    }
    EXPECT_EQ(textFromBytes("a\xFFz"), QStringView(u"a\xDCFFz"));
    EXPECT_EQ(textFromBytes("\xF0\x9F\x8E\xAC"), QStringLiteral("\U0001F3AC"));
    EXPECT_EQ(at("/a b/\xFF#").uri(), "file:///a%20b/%FF%23");

    QRandomGenerator random(7);
    for (int round = 0; round < 20'000; ++round) {
        QByteArray bytes;
        for (int i = int(random.bounded(12)); i >= 0; --i)
            bytes += char(random.bounded(4) ? 0x80 + random.bounded(0x80) : random.bounded(0x80));
        ASSERT_EQ(bytesFromText(textFromBytes(bytes)), bytes) << bytes.toHex().constData();
    }
}

TEST(Location, ReadsOnlyLocalFileUris)
{
    const std::pair<QByteArray, QByteArray> cases[] = {
        {"file:///a/b", "/a/b"},
        {"FILE://localhost/a", "/a"},
        {"file:/a", "/a"},
        {"file:///a%2Fb/../c", "/a/c"},
        {"file:///a?query#part", "/a"},
        {"file:///broken%zz%4", "/broken%zz%4"},
        {"file://server/share", ""},
        {"file://", ""},
        {"file:a", ""},
        {"http:///a", ""},
        {"/a", ""},
        {"file:///a%00b", ""},
        {"", ""},
    };
    for (const auto &[uri, expected] : cases)
        EXPECT_EQ(Location::fromUri(uri).bytes(), expected) << uri.constData();
}

TEST(Location, ResolvesLinksAsFarAsThePathExists)
{
    const QTemporaryDir folder;
    const Location root = Location::fromText(folder.path()).resolved();
    ASSERT_EQ(::mkdir(root.child("real").c_str(), 0700), 0);
    ASSERT_EQ(::symlink("real", root.child("link").c_str()), 0);
    ASSERT_EQ(::symlink("gone", root.child("dangling").c_str()), 0);
    ASSERT_EQ(::symlink("loop", root.child("loop").c_str()), 0);
    const std::pair<QByteArray, QByteArray> cases[] = {
        {"/link", "/real"},
        {"/link/missing/deeper", "/real/missing/deeper"},
        {"/dangling/x", "/dangling/x"},
        {"/loop/x", "/loop/x"},
        {"/missing", "/missing"},
    };
    for (const auto &[input, expected] : cases)
        EXPECT_EQ(at(root.bytes() + input).resolved().bytes(), root.bytes() + expected);
    EXPECT_EQ(at("/").resolved(), at("/"));
    EXPECT_EQ(at("/no-such-folder/x").resolved(), at("/no-such-folder/x"));
    EXPECT_TRUE(Location().resolved().isEmpty());
}

} // namespace

} // namespace cratewell
