#include "ui/dragging/drag_data.h"
#include "ui/dragging/drag_picture.h"

#include <QMimeData>
#include <gmock/gmock.h>

namespace cratewell {

namespace {

using namespace Qt::StringLiterals;

} // namespace

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
