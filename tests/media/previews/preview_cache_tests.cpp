#include "made_media.h"
#include "media/previews/keyed_job_queue.h"
#include "media/previews/preview_cache.h"
#include "media/previews/preview_formats.h"
#include "media/previews/preview_store.h"
#include "support/wait.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QSemaphore>
#include <gtest/gtest.h>
#include <utime.h>

namespace cratewell::test {

using namespace Qt::StringLiterals;

namespace {

struct ImageBytes
{
    qint64 operator()(const QImage &image) const { return image.sizeInBytes(); }
};

class PreviewStoreTest : public testing::Test
{
protected:
    using Store = PreviewStore<QImage, ImageBytes>;

    static PreviewKey at(const char *path, int version = 1, int part = 0, int changed = 0)
    {
        const FileVersion of{.inode = 1, .size = 1, .modified = version, .changed = changed};
        return {Location::fromBytes(path), of, part};
    }
    const QImage m_picture = filled({10, 10}, Qt::red);
    const qint64 m_cost = m_picture.sizeInBytes();
};

class PreviewCacheTest : public testing::Test
{
protected:
    QStringList files() const
    {
        QStringList paths;
        QDirIterator entries(m_files.path(u"cache"_s), QDir::Files, QDirIterator::Subdirectories);
        while (entries.hasNext())
            paths << entries.next();
        return paths;
    }
    DecodedFile pictureOf(const QImage &image) const { return {m_info, image, {}}; }
    PreviewCache cacheOf(qint64 budget) const
    {
        return {Location::fromText(m_files.path(u"cache"_s)), budget};
    }
    QImage picture(const QByteArray &key) const
    {
        const auto found = m_cache.load(key);
        return found ? found->image : QImage();
    }

    MadeMedia m_files;
    PreviewCache m_cache = cacheOf(1 << 30);
    const MediaInfo m_info{.duration = 12.5, .frameRate = 24, .width = 64, .height = 36, .codec = 0x61766331};
    std::atomic<bool> m_ending = false;
};

} // namespace

TEST_F(PreviewStoreTest, LetsGoOfWhatWasShownLongestAgo)
{
    Store store(3 * m_cost);
    quint64 turn = 0;
    for (const char *name : {"/a", "/b", "/c"})
        store.put(at(name), ++turn, m_picture);
    store.put(at("/bad"), ++turn, {});
    EXPECT_NE(store.show(at("/a")), nullptr);
    store.put(at("/c", 1, 7), ++turn, m_picture);
    EXPECT_EQ(store.state(at("/a")), PreviewState::Ready);
    EXPECT_EQ(store.state(at("/b")), PreviewState::Missing);
    EXPECT_EQ(store.state(at("/c")), PreviewState::Ready) << "parts of one file stand beside each other";
    EXPECT_EQ(store.state(at("/bad")), PreviewState::Failed);
    EXPECT_EQ(store.bytes(), 3 * m_cost);

    EXPECT_TRUE(store.forget(at("/a").url));
    store.put(at("/c"), ++turn, {});
    EXPECT_EQ(store.bytes(), m_cost);
    EXPECT_EQ(store.clear().size(), 2);
    EXPECT_EQ(store.bytes(), 0);
}

TEST_F(PreviewStoreTest, KeepsOneVersionOfAFileAndOfThatWhatWasAskedForLast)
{
    Store store(1 << 20);
    EXPECT_TRUE(store.put(at("/a", 2), 2, m_picture));
    EXPECT_FALSE(store.put(at("/a", 1), 1, {})) << "came late";
    EXPECT_FALSE(store.put(at("/a", 2), 1, {}));
    EXPECT_EQ(store.state(at("/a", 2)), PreviewState::Ready);
    EXPECT_EQ(store.state(at("/a", 1)), PreviewState::Missing);

    store.put(at("/a", 2, 5), 3, m_picture);
    EXPECT_TRUE(store.put(at("/a", 3), 4, m_picture));
    EXPECT_EQ(store.state(at("/a", 2, 5)), PreviewState::Missing);
    EXPECT_EQ(store.bytes(), m_cost);
    EXPECT_FALSE(store.forgetOutdated(at("/a").url, at("/a", 3).version));
    EXPECT_TRUE(store.forgetOutdated(at("/a").url, at("/a", 4).version));
    EXPECT_FALSE(store.forget(at("/a").url));
    EXPECT_EQ(store.bytes(), 0);
}

TEST_F(PreviewStoreTest, ForgetsFailuresAndNothingElseWhenTheContentStays)
{
    Store store(1 << 20);
    store.put(at("/a", 1, 0), 1, m_picture);
    store.put(at("/a", 1, 5), 2, {});
    EXPECT_EQ(store.state(at("/a", 1, 0, 9)), PreviewState::Ready);
    EXPECT_EQ(store.state(at("/a", 1, 5, 9)), PreviewState::Missing);
    EXPECT_TRUE(store.forgetOutdated(at("/a").url, at("/a", 1, 0, 9).version));
    EXPECT_EQ(store.state(at("/a", 1, 0, 9)), PreviewState::Ready);
    EXPECT_FALSE(store.forgetOutdated(at("/a").url, at("/a", 1, 0, 10).version));
}

TEST_F(PreviewCacheTest, FindsWhatWasSavedAndOnlyThat)
{
    m_cache.save("opaque", pictureOf(filled({64, 36}, QColor(200, 90, 30))));
    const QImage clear = halfClear({40, 40}, qRgba(255, 255, 255, 128));
    m_cache.save("clear", pictureOf(clear.convertToFormat(QImage::Format_ARGB32_Premultiplied)));
    m_cache.save("sound", DecodedFile{{.duration = 3.5, .sampleRate = 48000}, {}, {0.25F, 1, 0}});

    EXPECT_EQ(m_cache.load("opaque").value_or(DecodedFile()).info, m_info);
    EXPECT_FALSE(picture("opaque").hasAlphaChannel());
    EXPECT_TRUE(isNear(picture("opaque").pixel(30, 20), qRgb(200, 90, 30), 3));

    const QImage half = picture("clear");
    ASSERT_EQ(half.format(), QImage::Format_ARGB32_Premultiplied);
    EXPECT_EQ(qAlpha(half.pixel(5, 5)), 128);
    EXPECT_EQ(qAlpha(half.pixel(30, 5)), 0);
    for (int x = 0; x < 40; ++x) {
        const QRgb raw = reinterpret_cast<const QRgb *>(half.constScanLine(20))[x];
        ASSERT_LE(qRed(raw), qAlpha(raw)) << "no color brighter than its alpha";
    }
    const auto sound = m_cache.load("sound");
    ASSERT_TRUE(sound);
    EXPECT_EQ(sound->peaks, (WaveformPeaks{0.25F, 1, 0}));
    EXPECT_EQ(sound->info, (MediaInfo{.duration = 3.5, .sampleRate = 48000}));
    EXPECT_FALSE(m_cache.load("other"));
}

TEST_F(PreviewCacheTest, DoesNotBelieveDamagedFiles)
{
    m_cache.save("a", pictureOf(filled({64, 36}, Qt::red)));
    ASSERT_EQ(files().size(), 1);
    const QString file = files().first();
    const QByteArray whole = MadeMedia::content(file);
    QByteArray flipped = whole;
    flipped[whole.size() / 2] = char(flipped[whole.size() / 2] ^ 1);
    for (const QByteArray &bytes :
         {QByteArray(), QByteArray("CWP2"), whole.first(30), whole.chopped(1), flipped}) {
        m_files.bytes(file, bytes);
        EXPECT_FALSE(m_cache.load("a")) << bytes.size();
    }
    m_cache.save("b", pictureOf(filled({64, 36}, Qt::blue)));
    ASSERT_EQ(files().size(), 2);
    for (const QString &path : files())
        m_files.bytes(path, whole);
    EXPECT_TRUE(m_cache.load("a"));
    EXPECT_FALSE(m_cache.load("b")) << "the file of another key";
}

TEST_F(PreviewCacheTest, PrunesWhatWasUsedLongestAgo)
{
    qint64 bytes = 0;
    QStringList known;
    for (int i = 0; i < 10; ++i) {
        m_cache.save(QByteArray::number(i), pictureOf(filled({64, 64}, QColor(20 * i, 0, 0))));
        QStringList added = files();
        added.removeIf([&](const QString &path) { return known.contains(path); });
        ASSERT_EQ(added.size(), 1);
        bytes += QFileInfo(added[0]).size();
        const utimbuf times{1000 + i, 1000 + i};
        ASSERT_EQ(utime(QFile::encodeName(added[0]).constData(), &times), 0);
        known << added;
    }
    cacheOf(bytes).prune(m_ending);
    EXPECT_EQ(files().size(), 10);
    EXPECT_TRUE(m_cache.load("0")) << "and is used now";
    m_ending = true;
    cacheOf(bytes - 1).prune(m_ending);
    EXPECT_EQ(files().size(), 10) << "not while the program ends";
    m_ending = false;
    cacheOf(bytes - 1).prune(m_ending);
    EXPECT_LT(files().size(), 10);
    EXPECT_GE(files().size(), 7);
    EXPECT_TRUE(m_cache.load("0"));
    EXPECT_FALSE(m_cache.load("1"));
    EXPECT_TRUE(m_cache.load("9"));
}

// Git's objects, say, have names like those of the cache.
TEST_F(PreviewCacheTest, PrunesNoFilesButItsOwn)
{
    const QString foreign = m_files.path(u"foreign"_s), inside = foreign + u"/ab/"_s + QString(38, u'c');
    ASSERT_TRUE(QDir().mkpath(foreign + u"/ab"_s));
    m_cache.save("own", pictureOf(filled({64, 64}, Qt::red)));
    const QFileInfo own(files().first());
    const QString linkedPart = own.path().chopped(2) + (own.dir().dirName() == u"00"_s ? u"11"_s : u"00"_s);
    const QString lookalike = foreign + u'/' + own.fileName();
    for (const QString &path : {inside, lookalike})
        m_files.bytes(path, "precious");
    ASSERT_TRUE(QFile::link(foreign, linkedPart) && QFile::link(foreign, m_files.path(u"linked"_s)));
    cacheOf(0).prune(m_ending);
    PreviewCache(Location::fromText(m_files.path(u"linked"_s)), 0).prune(m_ending);
    EXPECT_TRUE(QFile::exists(inside) && QFile::exists(lookalike));
    EXPECT_FALSE(own.exists());
}

// So that whoever changes one gets previews made anew.
TEST(PreviewFormats, AreNamedByAllTheirNumbers)
{
    const Location file = Location::fromBytes("/a.mov");
    const DecodeRequest peaks = waveformPeaks(file);
    std::vector<DecodeRequest> others(4, peaks);
    others[0].kind = worker::JobKind::VideoFrame;
    others[1].maxSide = 1;
    others[2].fraction = 1 / 23.0;
    others[3].count = 241;
    for (const DecodeRequest &other : others)
        EXPECT_NE(markerOf(other), markerOf(peaks));
    EXPECT_NE(markerOf(scrubFrame(file, 11 / 23.0)), markerOf(scrubFrame(file, 12 / 23.0)));
}

TEST(KeyedJobQueue, JoinsOneKeyServesByPlaceAndEndsEachOnce)
{
    KeyedJobQueue jobs(1);
    QSemaphore begun, goOn;
    QStringList ended;
    const auto work = [&](const QString &name, bool held = false) {
        return [&, name, held]() -> KeyedJobQueue::Effects {
            if (held) {
                begun.release();
                goOn.acquire();
            }
            return [&ended, name](bool wanted) -> std::unique_ptr<PreviewRequest> {
                ended << (wanted ? name : name + u'-');
                return nullptr;
            };
        };
    };
    auto at = [number = quint64(0)](quint64 burst) mutable {
        return RequestPlace{RequestPlace::Rank::Usual, burst, ++number};
    };
    auto first = jobs.submit("a", at(1), work(u"a"_s, true));
    begun.acquire();
    const auto joined = jobs.submit("a", at(1), work(u"second a"_s));
    const auto raised = jobs.submit("raised", at(1), work(u"raised"_s));
    const auto kept = jobs.submit("kept", at(1), work(u"kept"_s));
    auto dropped = jobs.submit("dropped", at(2), work(u"dropped"_s));
    const auto newer = jobs.submit("newer", at(2), work(u"newer"_s));
    const auto newest = jobs.submit("newest", at(2), work(u"newest"_s));
    const auto raisedAgain = jobs.submit("raised", at(3), work(u"second raised"_s));
    dropped.reset();
    first.reset();
    goOn.release();
    ASSERT_TRUE(waitUntil([&] { return ended.size() == 5; }));
    EXPECT_EQ(ended, (QStringList{u"a"_s, u"raised"_s, u"newer"_s, u"newest"_s, u"kept"_s}));

    ended.clear();
    const auto again = jobs.submit("dropped", at(4), work(u"again"_s));
    ASSERT_TRUE(waitUntil([&] { return ended == QStringList{u"again"_s}; }));
    auto left = jobs.submit("left", at(4), work(u"left"_s, true));
    begun.acquire();
    left.reset();
    const auto joinedWhileItRuns = jobs.submit("left", at(4), work(u"second left"_s));
    auto alone = jobs.submit("alone", at(4), work(u"alone"_s, true));
    goOn.release();
    begun.acquire();
    alone.reset();
    goOn.release();
    ASSERT_TRUE(waitUntil([&] { return ended.size() == 3; }));
    EXPECT_EQ(ended.sliced(1), (QStringList{u"left"_s, u"alone-"_s}));
}

} // namespace cratewell::test
