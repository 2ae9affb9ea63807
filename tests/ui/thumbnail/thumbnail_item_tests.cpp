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
        return std::make_unique<Request>(*this, url);
    }
    QImage scrubFrame(const Location &, int bucket) const override { return frames.value(bucket); }
    std::unique_ptr<PreviewRequest> requestScrubFrame(const Location &, int bucket) override
    {
        requestedFrames << bucket;
        return std::make_unique<PreviewRequest>();
    }
    WaveformPeaks waveform(const Location &) const override { return peaks; }
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
        frames[bucket] = filled(color);
        Q_EMIT scrubFrameChanged(url, bucket);
    }
    void give(const Location &url, const QColor &color)
    {
        pictures[url] = filled(color);
        report(url, Media::State::Ready);
    }
    void report(const Location &url, Media::State state)
    {
        states[url] = state;
        Q_EMIT changed(url);
    }

    QHash<Location, Media::State> states;
    QHash<Location, QImage> pictures;
    QHash<int, QImage> frames;
    WaveformPeaks peaks;
    QList<int> requestedFrames;
    QList<Location> requested; // those that live

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
        window.show();
        EXPECT_TRUE(waitUntil([this] { return window.isExposed(); }));
    }

    bool requests(const QList<Location> &urls)
    {
        return waitUntil([&] { return source.requested == urls; });
    }
    QColor middle() { return window.grabWindow().pixelColor(80, 50); }
    bool shows(const QColor &color)
    {
        return waitUntil([&] { return middle() == color; });
    }

    const Location a = Location::fromText(u"/vault/a.mov"_s);
    const Location b = Location::fromText(u"/vault/b.mov"_s);
    FakeSource source;
    QQuickWindow window;
    ThumbnailItem item;
};

TEST_F(ThumbnailItemTest, AsksOnlyWhileItCanBeSeenAndHasNoPicture)
{
    item.setActive(false);
    item.setUrl(a);
    window.grabWindow();
    QCoreApplication::processEvents();
    EXPECT_TRUE(source.requested.isEmpty()) << "nobody sees it";
    item.setActive(true);
    ASSERT_TRUE(requests({a}));
    item.setActive(false);
    EXPECT_TRUE(source.requested.isEmpty()) << "left the view";
    item.setActive(true);
    ASSERT_TRUE(requests({a}));
    item.setVisible(false);
    EXPECT_TRUE(source.requested.isEmpty()) << "hidden";
    item.setVisible(true);
    ASSERT_TRUE(requests({a}));
    item.setUrl(b);
    ASSERT_TRUE(requests({b})) << "shows another file";
    source.give(b, Qt::red);
    ASSERT_TRUE(shows(Qt::red));
    EXPECT_TRUE(source.requested.isEmpty());
}

TEST_F(ThumbnailItemTest, APageIsRequestedFromItsBeginningUntilItsCardsGo)
{
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
    EXPECT_TRUE(requests(page));
    cards.clear();
    EXPECT_TRUE(source.requested.isEmpty());
}

TEST_F(ThumbnailItemTest, APictureStaysUntilThereIsANewOneOfTheSameFile)
{
    item.setUrl(a);
    source.give(a, Qt::red);
    ASSERT_TRUE(shows(Qt::red));
    source.pictures.remove(a); // as a source short of memory does: without a word
    source.states[a] = Media::State::Missing;
    item.setActive(false);
    item.setActive(true);
    EXPECT_EQ(middle(), QColor(Qt::red));
    QCoreApplication::processEvents();
    EXPECT_TRUE(source.requested.isEmpty());
    item.setSize({180, 180});
    EXPECT_EQ(window.grabWindow().pixelColor(90, 170), QColor(Qt::red)) << "stretched at once";
    ASSERT_TRUE(requests({a})) << "another size has to be cut from the picture itself";

    source.give(a, Qt::green);
    ASSERT_TRUE(shows(Qt::green));
    source.report(a, Media::State::Missing);
    ASSERT_TRUE(requests({a})) << "the file was written again";
    EXPECT_EQ(middle(), QColor(Qt::green));
    source.give(a, Qt::blue);
    ASSERT_TRUE(shows(Qt::blue));
    item.setUrl(b);
    EXPECT_FALSE(item.isShown());
    EXPECT_NE(middle(), QColor(Qt::blue)) << "never under another name";
    item.setUrl(a);
    EXPECT_EQ(middle(), QColor(Qt::blue)) << "one that was cut before is there at once, without a gap";
    source.report(a, Media::State::Failed);
    ASSERT_TRUE(waitUntil([this] { return !item.isShown(); }));
    EXPECT_NE(middle(), QColor(Qt::blue));
}

TEST_F(ThumbnailItemTest, FollowsThePointerOverAVideoWithoutAGap)
{
    item.setUrl(a);
    item.setScrub(0.5);
    source.give(a, Qt::red);
    ASSERT_TRUE(waitUntil([this] { return !source.requestedFrames.isEmpty(); }));
    EXPECT_EQ(source.requestedFrames, QList{11});
    EXPECT_EQ(item.duration(), u"0:12"_s);
    EXPECT_EQ(middle(), QColor(Qt::red)) << "stays until the frame is there";
    source.giveFrame(a, 11, Qt::green);
    ASSERT_TRUE(shows(Qt::green));

    item.setScrub(0.505);
    item.setScrub(1);
    ASSERT_TRUE(waitUntil([this] { return source.requestedFrames.size() == 2; }));
    EXPECT_EQ(source.requestedFrames.last(), 23) << "one request for each frame, not for each move";
    EXPECT_EQ(middle(), QColor(Qt::green));
    item.setScrub(-1);
    ASSERT_TRUE(shows(Qt::red));
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
    wave.setWaveStyle(u"line"_s);
    item.setKind(AssetKind::Audio);
    item.setUrl(a);
    wave.setUrl(a);
    const auto loud = [this] { return middle().green() > 75; };
    const auto report = [&](const WaveformPeaks &peaks, Media::State state) {
        source.peaks = peaks;
        source.report(a, state);
    };
    ASSERT_TRUE(requests({a})) << "the item asks for the sound as for a picture";
    EXPECT_FALSE(loud());
    report(WaveformPeaks(240, 1.0F), Media::State::Ready);
    ASSERT_TRUE(waitUntil(loud));
    EXPECT_TRUE(source.requested.isEmpty());
    report({}, Media::State::Missing);
    EXPECT_TRUE(loud()) << "what was let go stays drawn";
    report({}, Media::State::Failed);
    ASSERT_TRUE(waitUntil([&] { return !loud(); }));
    report(WaveformPeaks(240, 1.0F), Media::State::Ready);
    ASSERT_TRUE(waitUntil(loud));
    source.peaks = {};
    wave.setUrl(b);
    EXPECT_FALSE(loud()) << "another file";
}

} // namespace
} // namespace cratewell
