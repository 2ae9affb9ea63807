#include "ui/thumbnail/thumbnail_item.h"
#include "ui/thumbnail/waveform_item.h"

#include "support/wait.h"

#include <QHash>
#include <QQuickWindow>
#include <gtest/gtest.h>

namespace cratewell {
namespace {

using namespace Qt::StringLiterals;
using test::waitUntil;

// Pictures on command, and a record of what is requested.
class FakeSource : public ThumbnailProvider
{
public:
    Media::State state(const Location &url) const override
    {
        return states.value(url, Media::State::Missing);
    }
    QImage picture(const Location &url) const override { return pictures.value(url); }
    std::unique_ptr<PreviewRequest> request(const Location &url) override
    {
        ++asked;
        return std::make_unique<Request>(*this, url);
    }

    QImage scrubFrame(const Location &url, int bucket) const override { return frames.value({url, bucket}); }
    std::unique_ptr<PreviewRequest> requestScrubFrame(const Location &, int bucket) override
    {
        requestedFrames << bucket;
        return std::make_unique<PreviewRequest>();
    }
    WaveformPeaks waveform(const Location &url) const override { return peaks.value(url); }
    std::optional<MediaInfo> info(const Location &url) const override
    {
        return pictures.contains(url) ? std::optional(MediaInfo{.duration = 12}) : std::nullopt;
    }

    static QImage filled(const QColor &color)
    {
        QImage image(320, 200, QImage::Format_RGB32);
        image.fill(color);
        return image;
    }
    void giveFrame(const Location &url, int bucket, const QColor &color)
    {
        frames[{url, bucket}] = filled(color);
        Q_EMIT scrubFrameChanged(url, bucket);
    }
    void give(const Location &url, const QColor &color)
    {
        pictures[url] = filled(color);
        states[url] = Media::State::Ready;
        Q_EMIT changed(url);
    }
    void fail(const Location &url)
    {
        pictures.remove(url);
        states[url] = Media::State::Failed;
        Q_EMIT changed(url);
    }
    // As a source short of memory does: without a word.
    void letGo(const Location &url)
    {
        pictures.remove(url);
        states[url] = Media::State::Missing;
    }
    void invalidate(const Location &url)
    {
        states[url] = Media::State::Missing;
        Q_EMIT changed(url);
    }

    QHash<Location, Media::State> states;
    QHash<Location, QImage> pictures;
    QHash<std::pair<Location, int>, QImage> frames;
    QHash<Location, WaveformPeaks> peaks;
    QList<int> requestedFrames;
    QList<Location> requested; // those that live
    int asked = 0;

private:
    struct Request : PreviewRequest
    {
        Request(FakeSource &source, Location url) : owner(source), location(std::move(url))
        {
            owner.requested << location;
        }
        ~Request() override { owner.requested.removeOne(location); }
        FakeSource &owner;
        Location location;
    };
};

class ThumbnailItemTest : public testing::Test
{
protected:
    ThumbnailItemTest()
    {
        window.resize(200, 200);
        window.setColor(Qt::black);
        item.setParentItem(window.contentItem());
        item.setSize({160, 100});
        item.setRadius(10);
        item.setSource(&source);
    }

    void show()
    {
        window.show();
        ASSERT_TRUE(waitUntil([this] { return window.isExposed(); }));
    }
    // Opens the window on a picture of this color.
    void shows(const Location &url, const QColor &color)
    {
        item.setUrl(url);
        show();
        source.give(url, color);
        ASSERT_TRUE(waitUntil([this] { return item.isShown(); }));
        ASSERT_EQ(middle(), color);
    }
    bool requests(const Location &url)
    {
        return waitUntil([&] { return source.requested == QList<Location>{url}; });
    }
    QColor middle() { return window.grabWindow().pixelColor(80, 50); }

    const Location a = Location::fromText(u"/vault/a.mov"_s);
    const Location b = Location::fromText(u"/vault/b.mov"_s);
    FakeSource source;
    QQuickWindow window;
    ThumbnailItem item;
};

TEST_F(ThumbnailItemTest, AsksOnlyWhileItCanBeSeen)
{
    item.setActive(false);
    item.setUrl(a);
    show();
    window.grabWindow();
    EXPECT_EQ(source.asked, 0) << "nobody sees it";

    item.setActive(true);
    ASSERT_TRUE(requests(a));
    item.setActive(false);
    EXPECT_TRUE(source.requested.isEmpty()) << "left the view";

    item.setActive(true);
    ASSERT_TRUE(requests(a));
    item.setVisible(false);
    EXPECT_TRUE(source.requested.isEmpty()) << "hidden";

    item.setVisible(true);
    ASSERT_TRUE(requests(a));
    item.setUrl(b);
    ASSERT_TRUE(requests(b)) << "shows another file";
}

TEST_F(ThumbnailItemTest, APageIsRequestedFromItsBeginning)
{
    item.setActive(false);
    QList<Location> page;
    std::vector<std::unique_ptr<ThumbnailItem>> cards;
    for (int i = 0; i < 6; ++i) {
        page << Location::fromText(u"/vault/%1.mov"_s.arg(i));
        auto &card = *cards.emplace_back(std::make_unique<ThumbnailItem>());
        card.setSource(&source);
        card.setUrl(page.last());
        card.setSize({20, 20});
        const int line = i / 3;
        card.setPosition({i % 3 * 30.0, line * 30.0});
        card.setParentItem(window.contentItem());
    }
    show();
    ASSERT_TRUE(waitUntil([this] { return source.requested.size() == 6; }));
    EXPECT_EQ(source.requested, page);
}

TEST_F(ThumbnailItemTest, RequestEndsWithTheItemOrWithThePicture)
{
    show();
    auto passing = std::make_unique<ThumbnailItem>();
    passing->setSource(&source);
    passing->setUrl(b);
    passing->setSize({20, 20});
    passing->setParentItem(window.contentItem());
    ASSERT_TRUE(requests(b));
    passing.reset();
    EXPECT_TRUE(source.requested.isEmpty());

    item.setUrl(a);
    ASSERT_TRUE(requests(a));
    source.give(a, Qt::red);
    ASSERT_TRUE(waitUntil([this] { return item.isShown(); }));
    EXPECT_TRUE(source.requested.isEmpty());
    EXPECT_EQ(window.grabWindow().pixelColor(0, 0), QColor(Qt::black)) << "the corners are round";
}

TEST_F(ThumbnailItemTest, RewrittenFileKeepsItsPictureUntilTheNewOneIsThere)
{
    shows(a, Qt::red);
    source.invalidate(a);
    ASSERT_TRUE(requests(a));
    EXPECT_EQ(middle(), QColor(Qt::red));
    source.give(a, Qt::blue);
    ASSERT_TRUE(waitUntil([this] { return middle() == QColor(Qt::blue); }));
    source.fail(a);
    ASSERT_TRUE(waitUntil([this] { return !item.isShown(); }));
    EXPECT_NE(middle(), QColor(Qt::blue));
}

TEST_F(ThumbnailItemTest, NeverShowsTheOldFileUnderANewName)
{
    shows(a, Qt::red);
    item.setUrl(b);
    EXPECT_FALSE(item.isShown());
    EXPECT_NE(middle(), QColor(Qt::red));
    item.setUrl(a);
    EXPECT_EQ(middle(), QColor(Qt::red)) << "one that was cut before is there at once, without a gap";
}

TEST_F(ThumbnailItemTest, PictureOnTheScreenOutlivesTheSourcesOwn)
{
    shows(a, Qt::red);
    const int asked = source.asked;
    source.letGo(a);
    item.setActive(false);
    item.setActive(true);
    EXPECT_EQ(middle(), QColor(Qt::red));
    EXPECT_EQ(source.asked, asked);

    item.setSize({120, 75});
    ASSERT_TRUE(requests(a)) << "another size has to be cut from the picture itself";
    EXPECT_EQ(middle(), QColor(Qt::red));
}

TEST_F(ThumbnailItemTest, FollowsItsSize)
{
    shows(a, Qt::green);
    item.setSize({100, 180});
    EXPECT_EQ(window.grabWindow().pixelColor(50, 170), QColor(Qt::green)) << "stretched at once";
    EXPECT_TRUE(waitUntil([this] {
        return !source.scaler().ready(source.pictures[a], {{100, 180}, 10}).isNull();
    }));
}

TEST_F(ThumbnailItemTest, FollowsThePointerOverAVideoWithoutAGap)
{
    item.setUrl(a);
    show();
    item.setScrub(0.5);
    source.give(a, Qt::red);
    ASSERT_TRUE(waitUntil([this] { return !source.requestedFrames.isEmpty(); }));
    EXPECT_EQ(source.requestedFrames, QList{11});
    EXPECT_EQ(item.duration(), u"0:12"_s);
    EXPECT_EQ(middle(), QColor(Qt::red)) << "stays until the frame is there";
    source.giveFrame(a, 11, Qt::green);
    ASSERT_TRUE(waitUntil([this] { return middle() == QColor(Qt::green); }));

    item.setScrub(0.505);
    item.setScrub(1);
    ASSERT_TRUE(waitUntil([this] { return source.requestedFrames.size() == 2; }));
    EXPECT_EQ(source.requestedFrames.last(), 23) << "one request for each frame, not for each move";
    EXPECT_EQ(middle(), QColor(Qt::green));
    item.setScrub(-1);
    ASSERT_TRUE(waitUntil([this] { return middle() == QColor(Qt::red); }));
    source.giveFrame(a, 23, Qt::blue);
    EXPECT_EQ(middle(), QColor(Qt::red)) << "came when the pointer had left";

    item.setUrl(b);
    EXPECT_EQ(item.duration(), QString());
}

TEST_F(ThumbnailItemTest, ASoundHasItsWaveformOverATile)
{
    WaveformItem wave;
    wave.setParentItem(window.contentItem());
    wave.setSize(item.size());
    wave.setSource(&source);
    item.setKind(AssetKind::Audio);
    const auto show = [&](const Location &url, const WaveformPeaks &peaks, Media::State state) {
        source.peaks[url] = peaks;
        source.states[url] = state;
        Q_EMIT source.changed(url);
    };
    const auto loud = [this] { return window.grabWindow().pixelColor(80, 50).green() > 75; };
    item.setUrl(a);
    wave.setUrl(a);
    wave.setWaveStyle(u"line"_s);
    ThumbnailItemTest::show();
    ASSERT_TRUE(requests(a)) << "the item asks for the sound as for a picture";
    EXPECT_FALSE(loud());
    show(a, WaveformPeaks(240, 1.0F), Media::State::Ready);
    ASSERT_TRUE(waitUntil(loud));
    EXPECT_TRUE(source.requested.isEmpty());

    show(a, {}, Media::State::Missing);
    window.grabWindow();
    EXPECT_TRUE(loud()) << "what was let go stays drawn";
    show(a, {}, Media::State::Failed);
    ASSERT_TRUE(waitUntil([&] { return !loud(); }));
    show(a, WaveformPeaks(240, 1.0F), Media::State::Ready);
    ASSERT_TRUE(waitUntil(loud));
    wave.setUrl(b);
    EXPECT_FALSE(loud()) << "another file";
}

TEST_F(ThumbnailItemTest, HasNoPictureWithoutASource)
{
    item.setSource(nullptr);
    item.setUrl(a);
    show();
    EXPECT_EQ(middle(), QColor(Qt::black));
}

} // namespace
} // namespace cratewell
