#include "made_media.h"
#include "media/previews/keyed_job_queue.h"
#include "media/previews/preview_cache.h"
#include "media/previews/preview_store.h"
#include "support/wait.h"

#include <QDirIterator>
#include <QSemaphore>
#include <gtest/gtest.h>
#include <utime.h>

namespace cratewell::test {

using namespace Qt::StringLiterals;

namespace {

QImage filled(QSize size, const QColor &color, QImage::Format format = QImage::Format_RGB32)
{
    QImage image(size, format);
    image.fill(color);
    return image;
}

struct ImageBytes
{
    qint64 operator()(const QImage &image) const { return image.sizeInBytes(); }
};

class PreviewStoreTest : public testing::Test
{
protected:
    using Store = PreviewStore<QImage, ImageBytes>;

    static PreviewKey at(const char *path, int version = 1, int part = 0)
    {
        return {Location::fromBytes(path), {.inode = 1, .size = 1, .modified = version}, part};
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
    PreviewCache cacheOf(qint64 budget) const
    {
        return {Location::fromText(m_files.path(u"cache"_s)), budget};
    }
    QImage picture(const QByteArray &key) const
    {
        const auto found = m_cache.load(key);
        const auto *decoded = found ? std::get_if<DecodedPicture>(&*found) : nullptr;
        return decoded ? decoded->image : QImage();
    }

    MadeMedia m_files;
    PreviewCache m_cache = cacheOf(1 << 30);
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
    EXPECT_FALSE(store.forgetOthers(at("/a").url, at("/a", 3).version));
    EXPECT_TRUE(store.forgetOthers(at("/a").url, at("/a", 4).version));
    EXPECT_FALSE(store.forget(at("/a").url));
    EXPECT_EQ(store.bytes(), 0);
}

TEST_F(PreviewCacheTest, GivesBackWhatWasSavedAndOnlyThat)
{
    m_cache.save("opaque", DecodedPicture{filled({64, 36}, QColor(200, 90, 30)), 12.5});
    QImage clear = filled({40, 40}, QColor(255, 0, 0, 100), QImage::Format_ARGB32_Premultiplied);
    clear.fill(Qt::transparent);
    for (int y = 0; y < 20; ++y) {
        for (int x = 0; x < 40; ++x)
            clear.setPixelColor(x, y, QColor(255, 255, 255, 128));
    }
    m_cache.save("clear", DecodedPicture{clear, 0});
    m_cache.save("sound", DecodedAudio{{0.25F, 1, 0}, 3.5});

    const auto opaque = m_cache.load("opaque");
    ASSERT_TRUE(opaque);
    EXPECT_EQ(std::get<DecodedPicture>(*opaque).duration, 12.5);
    EXPECT_FALSE(picture("opaque").hasAlphaChannel());
    const QColor color = picture("opaque").pixelColor(30, 20);
    EXPECT_NEAR(color.red(), 200, 3);
    EXPECT_NEAR(color.green(), 90, 3);
    EXPECT_NEAR(color.blue(), 30, 3);

    const QImage half = picture("clear");
    ASSERT_EQ(half.format(), QImage::Format_ARGB32_Premultiplied);
    EXPECT_EQ(qAlpha(half.pixel(5, 5)), 128);
    EXPECT_EQ(qAlpha(half.pixel(5, 30)), 0);
    for (int y = 0; y < 40; ++y) {
        const QRgb raw = reinterpret_cast<const QRgb *>(half.constScanLine(y))[20];
        ASSERT_LE(qRed(raw), qAlpha(raw)) << "no color brighter than its alpha";
    }
    const auto sound = m_cache.load("sound");
    ASSERT_TRUE(sound);
    EXPECT_EQ(std::get<DecodedAudio>(*sound).peaks, (WaveformPeaks{0.25F, 1, 0}));
    EXPECT_EQ(std::get<DecodedAudio>(*sound).duration, 3.5);
    EXPECT_FALSE(m_cache.load("other"));
}

TEST_F(PreviewCacheTest, DoesNotBelieveDamagedFiles)
{
    m_cache.save("a", DecodedPicture{filled({64, 36}, Qt::red), 1});
    ASSERT_EQ(files().size(), 1);
    QFile file(files().first());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray whole = file.readAll();
    file.close();
    const auto write = [&](const QByteArray &bytes) {
        return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) == bytes.size() &&
               (file.close(), true);
    };
    QByteArray flipped = whole;
    flipped[whole.size() / 2] = char(flipped[whole.size() / 2] ^ 1);
    for (const QByteArray &bytes :
         {QByteArray(), QByteArray("CWP1"), whole.first(30), whole.chopped(1), flipped}) {
        ASSERT_TRUE(write(bytes));
        EXPECT_FALSE(m_cache.load("a")) << bytes.size();
    }
    ASSERT_TRUE(write(whole));
    EXPECT_TRUE(m_cache.load("a"));
    ASSERT_TRUE(QFile::rename(file.fileName(), m_files.path(u"moved"_s)));
    m_cache.save("b", DecodedAudio{{1}, 1});
    ASSERT_EQ(files().size(), 1);
    QFile::remove(files().first());
    file.setFileName(m_files.path(u"moved"_s));
    EXPECT_FALSE(m_cache.load("b"));
}

TEST_F(PreviewCacheTest, PrunesWhatWasUsedLongestAgo)
{
    qint64 bytes = 0;
    QByteArrayList keys;
    for (int i = 0; i < 10; ++i) {
        keys << QByteArray::number(i);
        const QStringList before = files();
        m_cache.save(keys.last(), DecodedPicture{filled({64, 64}, QColor(20 * i, 0, 0)), 0});
        for (const QString &path : files()) {
            if (before.contains(path))
                continue;
            bytes += QFileInfo(path).size();
            const utimbuf times{1000 + i, 1000 + i};
            ASSERT_EQ(utime(QFile::encodeName(path).constData(), &times), 0);
        }
    }
    cacheOf(bytes).prune(m_ending);
    EXPECT_EQ(files().size(), 10);
    EXPECT_TRUE(m_cache.load(keys.first())) << "and is used now";
    m_ending = true;
    cacheOf(bytes - 1).prune(m_ending);
    EXPECT_EQ(files().size(), 10) << "not while the program ends";
    m_ending = false;
    cacheOf(bytes - 1).prune(m_ending);
    EXPECT_LT(files().size(), 10);
    EXPECT_GE(files().size(), 7);
    EXPECT_TRUE(m_cache.load(keys.first()));
    EXPECT_FALSE(m_cache.load(keys[1]));
    EXPECT_TRUE(m_cache.load(keys.last()));
}

TEST(KeyedJobQueue, JoinsOneKeyDropsWhatNobodyWaitsForAndEndsEachOnce)
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
    auto first = jobs.submit("a", work(u"a"_s, true));
    begun.acquire();
    const auto joined = jobs.submit("a", work(u"second a"_s));
    const auto kept = jobs.submit("kept", work(u"kept"_s));
    auto dropped = jobs.submit("dropped", work(u"dropped"_s));
    const auto newest = jobs.submit("newest", work(u"newest"_s));
    dropped.reset();
    first.reset();
    goOn.release();
    ASSERT_TRUE(waitUntil([&] { return ended.size() == 3; }));
    EXPECT_EQ(ended, (QStringList{u"a"_s, u"newest"_s, u"kept"_s}));

    ended.clear();
    const auto again = jobs.submit("dropped", work(u"again"_s));
    ASSERT_TRUE(waitUntil([&] { return ended == QStringList{u"again"_s}; }));
    auto left = jobs.submit("left", work(u"left"_s, true));
    begun.acquire();
    left.reset();
    const auto joinedWhileItRuns = jobs.submit("left", work(u"second left"_s));
    auto alone = jobs.submit("alone", work(u"alone"_s, true));
    goOn.release();
    begun.acquire();
    alone.reset();
    goOn.release();
    ASSERT_TRUE(waitUntil([&] { return ended.size() == 3; }));
    EXPECT_EQ(ended.sliced(1), (QStringList{u"left"_s, u"alone-"_s}));
}

} // namespace cratewell::test
