#include "made_media.h"
#include "media/previews/keyed_job_queue.h"
#include "media/previews/preview_cache.h"
#include "media/previews/preview_store.h"
#include "support/wait.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QSemaphore>
#include <filesystem>
#include <gtest/gtest.h>

namespace cratewell::test {

using namespace Qt::StringLiterals;

// Values that cost what they are.
struct Itself
{
    qint64 operator()(int value) const { return value; }
};
using Store = PreviewStore<int, Itself>;

PreviewKey at(const char *path, int version = 1, int part = 0)
{
    return {Location::fromBytes(path), {.inode = 1, .size = 1, .modified = version}, part};
}

TEST(PreviewStore, LetsGoOfWhatWasShownLongestAgo)
{
    Store store(3);
    quint64 turn = 0;
    for (const char *path : {"/a", "/b", "/c"})
        store.put(at(path), ++turn, 1);
    store.put(at("/bad"), ++turn, {});
    EXPECT_NE(store.show(at("/a")), nullptr);
    store.put(at("/c", 1, 7), ++turn, 1);
    using enum PreviewState;
    for (const auto &[path, state] :
         {std::pair("/a", Ready), {"/b", Missing}, {"/c", Ready}, {"/bad", Failed}})
        EXPECT_EQ(store.state(at(path)), state) << path;
    EXPECT_TRUE(store.forget(at("/a").url));
    store.put(at("/c"), ++turn, {});
    EXPECT_EQ(store.bytes(), 1);
}

TEST(PreviewStore, KeepsOneVersionOfAFileAndOfThatWhatWasAskedForLast)
{
    Store store(100);
    EXPECT_TRUE(store.put(at("/a", 2), 2, 1));
    EXPECT_FALSE(store.put(at("/a", 1), 1, {})) << "came late";
    EXPECT_FALSE(store.put(at("/a", 2), 1, {}));
    EXPECT_EQ(store.state(at("/a", 2)), PreviewState::Ready);
    EXPECT_TRUE(store.put(at("/a", 2, 5), 3, 1));
    EXPECT_TRUE(store.put(at("/a", 3), 4, 1));
    EXPECT_EQ(store.bytes(), 1) << "nothing of the version before";
    EXPECT_FALSE(store.forgetOutdated(at("/a").url, at("/a", 3).version));
    EXPECT_TRUE(store.forgetOutdated(at("/a").url, at("/a", 4).version));
    EXPECT_EQ(store.bytes(), 0);
}

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
    void save(const QByteArray &key, const QImage &image) { m_cache.save(key, {{}, image, {}}); }
    void prune(qint64 budget, const QString &folder = u"cache"_s) const
    {
        PreviewCache(Location::fromText(m_files.path(folder)), budget).prune(m_ending);
    }

    MadeMedia m_files;
    PreviewCache m_cache{Location::fromText(m_files.path(u"cache"_s)), 1 << 30};
    std::atomic<bool> m_ending = false;
    const QImage m_red = filled({64, 36}, Qt::red);
};

TEST_F(PreviewCacheTest, KeepsAlphaAndNoColorBrighterThanIt)
{
    const QImage clear = halfClear({40, 40}, qRgba(255, 255, 255, 128));
    save("clear", clear.convertToFormat(QImage::Format_ARGB32_Premultiplied));
    const QImage half = m_cache.load("clear").value_or(DecodedFile()).image;
    ASSERT_EQ(half.format(), QImage::Format_ARGB32_Premultiplied);
    EXPECT_EQ(qAlpha(half.pixel(5, 5)), 128);
    EXPECT_EQ(qAlpha(half.pixel(30, 5)), 0);
    for (int x = 0; x < 40; ++x) {
        const QRgb raw = reinterpret_cast<const QRgb *>(half.constScanLine(20))[x];
        ASSERT_LE(qRed(raw), qAlpha(raw)) << x;
    }
}

TEST_F(PreviewCacheTest, DoesNotBelieveDamagedFiles)
{
    save("a", m_red);
    ASSERT_EQ(files().size(), 1);
    const QString file = files().first();
    const QByteArray whole = MadeMedia::content(file);
    QByteArray flipped = whole;
    flipped[whole.size() / 2] = char(flipped[whole.size() / 2] ^ 1);
    for (const QByteArray &bytes : {QByteArray(), whole.first(30), whole.chopped(1), flipped}) {
        m_files.bytes(file, bytes);
        EXPECT_FALSE(m_cache.load("a")) << bytes.size();
    }
    save("b", m_red);
    for (const QString &path : files())
        m_files.bytes(path, whole);
    EXPECT_TRUE(m_cache.load("a"));
    EXPECT_FALSE(m_cache.load("b")) << "the file of another key";
}

TEST_F(PreviewCacheTest, PrunesWhatWasUsedLongestAgo)
{
    namespace fs = std::filesystem;
    for (int key = 0; key < 10; ++key) {
        save(QByteArray::number(key), m_red);
        for (const QString &path : files()) {
            const fs::path file(path.toStdString());
            fs::last_write_time(file, fs::last_write_time(file) - std::chrono::minutes(1));
        }
    }
    qint64 bytes = 0;
    for (const QString &path : files())
        bytes += QFileInfo(path).size();
    prune(bytes);
    EXPECT_TRUE(m_cache.load("0")) << "and is used now";
    m_ending = true;
    prune(bytes - 1);
    EXPECT_EQ(files().size(), 10) << "not while the program ends";
    m_ending = false;
    prune(bytes - 1);
    EXPECT_EQ(files().size(), 7) << "four fifths at most";
    EXPECT_TRUE(m_cache.load("0") && m_cache.load("9"));
    EXPECT_FALSE(m_cache.load("1"));
}

// Git's objects, say, have names like those of the cache.
TEST_F(PreviewCacheTest, PrunesNoFilesButItsOwn)
{
    const QString foreign = m_files.path(u"foreign"_s), inside = foreign + u"/ab/"_s + QString(38, u'c');
    ASSERT_TRUE(QDir().mkpath(foreign + u"/ab"_s));
    save("own", m_red);
    const QFileInfo own(files().first());
    const QString linkedPart = own.path().chopped(2) + (own.dir().dirName() == u"00"_s ? u"11"_s : u"00"_s);
    const QString lookalike = foreign + u'/' + own.fileName();
    for (const QString &path : {inside, lookalike})
        m_files.bytes(path, "precious");
    ASSERT_TRUE(QFile::link(foreign, linkedPart) && QFile::link(foreign, m_files.path(u"linked"_s)));
    prune(0);
    prune(0, u"linked"_s);
    EXPECT_TRUE(QFile::exists(inside) && QFile::exists(lookalike));
    EXPECT_FALSE(own.exists());
}

TEST(KeyedJobQueue, JoinsOneKeyServesByPlaceAndEndsEachOnce)
{
    KeyedJobQueue jobs(1);
    QSemaphore begun, goOn;
    QStringList ended;
    quint64 number = 0;
    const auto submit = [&](const QByteArray &key, quint64 burst, const QString &name) {
        const auto work = [&, name]() -> KeyedJobQueue::Effects {
            if (name.startsWith(u"held")) {
                begun.release();
                goOn.acquire();
            }
            return [&ended, name](bool wanted) -> std::unique_ptr<PreviewRequest> {
                ended << (wanted ? name : name + u" for nobody"_s);
                return nullptr;
            };
        };
        return jobs.submit(key, {RequestPlace::Rank::Usual, burst, ++number}, work);
    };
    auto first = submit("first", 1, u"held"_s);
    begun.acquire();
    first.reset();
    const auto joined = submit("first", 1, u"first again"_s);
    const auto kept = submit("kept", 1, u"kept"_s);
    const auto raised = submit("raised", 1, u"raised"_s);
    auto dropped = submit("dropped", 2, u"dropped"_s);
    const auto newer = submit("newer", 2, u"newer"_s);
    const auto raisedAgain = submit("raised", 3, u"raised again"_s);
    auto unwanted = submit("unwanted", 0, u"held"_s);
    dropped.reset();
    goOn.release();
    begun.acquire();
    unwanted.reset();
    goOn.release();
    ASSERT_TRUE(waitUntil([&] { return ended.size() == 5; }));
    EXPECT_EQ(ended.join(u", "), u"held, raised, newer, kept, held for nobody"_s);
}

} // namespace cratewell::test
