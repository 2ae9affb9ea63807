#include "ui/dragging/drag_data.h"
#include "ui/dragging/drag_picture.h"

#include <QMimeData>
#include <gmock/gmock.h>

namespace cratewell {

using namespace Qt::StringLiterals;

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
    EXPECT_EQ(ownDragItems(data->data(u"text/uri-list"_s)), std::nullopt);
    EXPECT_EQ(ownDragItems("6f1c0f2e-another-process\r\n" + data->data(u"text/uri-list"_s)), std::nullopt);
}

TEST(DragPicture, ShowsThePressedCardInFrontAndHowManyThereAre)
{
    QImage red(64, 36, QImage::Format_RGB32);
    red.fill(Qt::red);
    QImage green = red;
    green.fill(Qt::green);
    const QImage drawn = dragPicture({red, green}, 5000, Qt::magenta, 2).toImage();
    EXPECT_EQ(drawn.pixelColor(112, 90), QColor(Qt::red));
    EXPECT_EQ(drawn.pixelColor(112, 158), QColor(Qt::green));
    EXPECT_EQ(drawn.pixelColor(drawn.width() - 4, 4), QColor(Qt::magenta)) << "the badge";
}

} // namespace cratewell
