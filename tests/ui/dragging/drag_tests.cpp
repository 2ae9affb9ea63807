#include "ui/dragging/drag_data.h"
#include "ui/dragging/drag_picture.h"
#include "ui/dragging/dropped_items.h"

#include <QMimeData>
#include <QTemporaryDir>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>

namespace cratewell {

namespace {

using namespace Qt::StringLiterals;

// A vault and a desktop beside it.
class Dropped : public testing::Test
{
protected:
    void SetUp() override
    {
        std::filesystem::create_directories(named("desktop").c_str());
        for (const char *file : {"vault/SFX/Hits/a.wav", "vault/SFX/b.wav", "vault 2/c.wav"})
            make(file);
        std::filesystem::create_directories(named("vault/Overlays").c_str());
        make("desktop/d.wav");
        link("vault", "link to vault");
        link("vault/SFX/b.wav", "desktop/link to b.wav");
        link("desktop/d.wav", "vault/SFX/link to d.wav");
        link("vault/SFX/b.wav", "vault/SFX/Hits/link to b.wav");
    }

    Location named(const char *name) const
    {
        const Location folder = Location::fromText(m_folder.path()).resolved();
        return Location::fromText(folder.text() + u'/' + QString::fromUtf8(name));
    }

private:
    void make(const char *name) const
    {
        const std::filesystem::path path(named(name).c_str());
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path) << "x";
    }
    void link(const char *target, const char *name) const
    {
        std::filesystem::create_symlink(named(target).c_str(), named(name).c_str());
    }

    QTemporaryDir m_folder;
};

} // namespace

TEST_F(Dropped, WhatLiesInTheVaultIsTakenFromTheRestThroughEveryLink)
{
    const struct
    {
        const char *what;
        Location item;
        std::optional<Location> inside; // nothing: outside
    } cases[] = {
        {"a file", named("vault/SFX/Hits/a.wav"), named("vault/SFX/Hits/a.wav")},
        {"a folder", named("vault/SFX/Hits"), named("vault/SFX/Hits")},
        {"a file that is gone", named("vault/SFX/gone.wav"), named("vault/SFX/gone.wav")},
        {"by another way to the vault", named("link to vault/SFX/b.wav"), named("link to vault/SFX/b.wav")},
        {"a link in the vault to a file of it", named("vault/SFX/Hits/link to b.wav"),
         named("vault/SFX/Hits/link to b.wav")},
        {"a link from outside", named("desktop/link to b.wav"), named("vault/SFX/b.wav")},
        {"a link in the vault to a file outside", named("vault/SFX/link to d.wav"), {}},
        {"a file outside", named("desktop/d.wav"), {}},
        {"beside the vault, with its name to begin with", named("vault 2/c.wav"), {}},
        {"the vault itself", named("vault"), {}},
    };
    for (const Location &root : {named("vault"), named("link to vault")}) {
        for (const auto &row : cases) {
            const DroppedItems dropped = splitDropped({row.item, Location()}, root);
            if (row.inside)
                EXPECT_EQ(dropped, (DroppedItems{{*row.inside}, {}})) << row.what;
            else
                EXPECT_EQ(dropped, (DroppedItems{{}, {row.item}})) << row.what;
        }
    }
    EXPECT_EQ(
        splitDropped({named("desktop/d.wav"), named("vault/SFX/b.wav")}, named("vault"), 1).inside.size(),
        0U);
}

TEST_F(Dropped, MovesAndImportsThatTakeNothingAreKnown)
{
    const auto moves = [this](const std::vector<Location> &items) {
        return movesAny(items, named("vault/Overlays"), named("vault"));
    };
    EXPECT_TRUE(moves({named("vault/SFX/b.wav"), named("vault/SFX/Hits")}));
    EXPECT_FALSE(moves({named("vault/SFX/b.wav"), named("vault/SFX")})) << "a category stays";
    EXPECT_TRUE(importsAny({named("a.txt"), named("desktop/d.wav")}));
    EXPECT_TRUE(importsAny({named("desktop")}));
    EXPECT_FALSE(importsAny({named("a.txt"), named("nowhere")}));
}

TEST(DragData, CarriesEveryNameToOthersAndBack)
{
    const std::vector items{
        Location::fromText(u"/v/with space.mov"_s), Location::fromText(u"/v/ünï 100% %20;#?.mov"_s),
        Location::fromBytes("/v/stray \xff byte.mov"), Location::fromBytes("/v/two\nlines.mov")};
    const auto data = dragData(items);
    std::vector<Location> read;
    for (const QUrl &url : data->urls())
        read.push_back(Location::fromUrl(url));
    EXPECT_EQ(read, items);
    EXPECT_TRUE(data->data(u"text/uri-list"_s).endsWith("\r\n"));

    const QByteArray own = data->data(u"llc.tolvan.cratewell.paths"_s);
    EXPECT_EQ(ownDragItems(own), items);
    EXPECT_EQ(ownDragItems({}), std::nullopt);
    EXPECT_EQ(ownDragItems(data->data(u"text/uri-list"_s)), std::nullopt);
    EXPECT_EQ(ownDragItems("6f1c0f2e-another-process\r\n" + data->data(u"text/uri-list"_s)), std::nullopt);
}

TEST(DragPicture, ShowsThePressedCardInFrontAndHowManyThereAre)
{
    const auto filled = [](Qt::GlobalColor color) {
        QImage image(64, 36, QImage::Format_RGB32);
        image.fill(color);
        return image;
    };
    const std::vector pictures{filled(Qt::red), filled(Qt::green), filled(Qt::blue)};
    const auto at = [](const QPixmap &picture, QPoint point) {
        return picture.toImage().pixelColor(point * picture.devicePixelRatio());
    };
    for (const double ratio : {1.0, 2.0}) {
        const QPixmap one = dragPicture({pictures[0]}, 1, Qt::magenta, ratio);
        EXPECT_EQ(at(one, {56, 35}), QColor(Qt::red));

        const QPixmap many = dragPicture(pictures, 5000, Qt::magenta, ratio);
        EXPECT_EQ(at(many, {56, 45}), QColor(Qt::red));
        EXPECT_EQ(at(many, {56, 79}), QColor(Qt::green));
        EXPECT_EQ(at(many, {56, 85}), QColor(Qt::blue));
        const int right = int(many.deviceIndependentSize().width());
        EXPECT_EQ(at(many, {right - 2, 2}), QColor(Qt::magenta)) << "the badge";
        EXPECT_NE(at(one, {int(one.deviceIndependentSize().width()) - 2, 2}), QColor(Qt::magenta));
        EXPECT_FALSE(many.hasAlphaChannel());
    }
    EXPECT_FALSE(dragPicture({}, 0, Qt::magenta, 1).isNull());
}

} // namespace cratewell
