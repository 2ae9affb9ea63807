#include "made_media.h"
#include "media/decoding/decode_pool.h"
#include "platform/posix/file_descriptor.h"
#include "support/wait.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

namespace cratewell::test {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

// Jobs named after their files; what happens to each is noted in the order it happens.
class DecodePoolTest : public testing::Test
{
protected:
    DecodePoolTest() { qputenv("CRATEWELL_STAND_IN_LOG", m_files.path(u"log"_s).toUtf8()); }

    static Location standIn() { return Location::fromText(QStringLiteral(CRATEWELL_STAND_IN_WORKER)); }
    static Location realWorker() { return Location::fromText(QStringLiteral(CRATEWELL_REAL_WORKER)); }

    Location file(const QString &name, const QByteArray &content)
    {
        return Location::fromText(m_files.bytes(name, content));
    }
    Location at(const QString &name) const { return Location::fromText(m_files.path(name)); }

    // In a burst of its own, unless a place is given.
    std::unique_ptr<PreviewRequest> submit(DecodePool &pool, const Location &place,
                                           worker::JobKind kind = worker::JobKind::StillImage,
                                           RequestPlace at = {})
    {
        const std::string name = place.name().toStdString();
        if (at.number == 0)
            at.burst = at.number = ++m_requests;
        const DecodeRequest request{
            .file = place, .kind = kind, .maxSide = 64, .fraction = 0.5, .count = 240};
        return pool.submit({.key = place.bytes(),
                            .request = request,
                            .place = at,
                            .finished = [this, name](const DecodeResult &result) {
                                m_last = result;
                                m_results.push_back(name + (result ? "" : " failed"));
                            }});
    }

    // Every job the stand-in was given.
    std::vector<std::string> log() const
    {
        std::ifstream stream(m_files.path(u"log"_s).toStdString());
        std::vector<std::string> lines;
        for (std::string line; std::getline(stream, line);)
            lines.push_back(line);
        return lines;
    }
    [[nodiscard]] bool waitForResults(size_t count)
    {
        return waitUntil([&] { return m_results.size() >= count; });
    }

    MadeMedia m_files;
    std::vector<std::string> m_results;
    DecodeResult m_last;
    quint64 m_requests = 0;
};

TEST_F(DecodePoolTest, DoesWhatWasStartedAndOnlyOnceAtATime)
{
    DecodePool pool(standIn(), {.slots = 2, .budget = 60s});
    auto first = submit(pool, file(u"slow"_s, "hang"));
    ASSERT_TRUE(waitUntil([&] { return log().size() == 1; }));
    first.reset();
    auto again = submit(pool, at(u"slow"_s));
    kill(pid_t(pool.workerProcessIds().front()), SIGKILL);
    ASSERT_TRUE(waitForResults(1));
    // Over, the same key is new work.
    const auto later = submit(pool, file(u"slow"_s, "now quick"));
    ASSERT_TRUE(waitForResults(2));
    // A request that outlives its job has no say about the next one of that name.
    const auto last = submit(pool, at(u"slow"_s));
    again.reset();
    ASSERT_TRUE(waitForResults(3));
    // A worker that dies between jobs costs nothing.
    for (const qint64 worker : pool.workerProcessIds())
        kill(pid_t(worker), SIGKILL);
    const auto after = submit(pool, at(u"slow"_s));
    ASSERT_TRUE(waitForResults(4));
    EXPECT_THAT(m_results, ElementsAre("slow failed", "slow", "slow", "slow"));
    EXPECT_THAT(log(), ElementsAre("hang", "now quick", "now quick", "now quick"));
}

TEST_F(DecodePoolTest, StartsByRankThenTheNewestBurstAndInThatTheFirstButNothingThatWasDropped)
{
    using Rank = RequestPlace::Rank;
    DecodePool pool(standIn(), {.slots = 1});
    std::vector<std::unique_ptr<PreviewRequest>> requests;
    const auto ask = [&](const QString &name, const RequestPlace &place) {
        requests.push_back(submit(pool, file(name, "fine"), worker::JobKind::StillImage, place));
    };
    ask(u"a"_s, {Rank::Usual, 1, 1});
    ask(u"b"_s, {Rank::Usual, 1, 2});
    ask(u"c"_s, {Rank::Interactive, 1, 3});
    ask(u"d"_s, {Rank::Usual, 2, 4});
    ask(u"e"_s, {Rank::Usual, 2, 5});
    ask(u"f"_s, {Rank::Interactive, 2, 6});
    ask(u"b"_s, {Rank::Interactive, 3, 7});
    ask(u"b"_s, {Rank::Usual, 3, 8}); // does not lower it
    ask(u"g"_s, {Rank::Usual, 3, 9});
    requests.erase(requests.begin() + 1); // of "b", which two more requests keep
    requests.pop_back();
    ASSERT_TRUE(waitForResults(6));
    EXPECT_THAT(m_results, ElementsAre("b", "f", "c", "d", "e", "a"));
    EXPECT_EQ(log().size(), 6U) << "what was dropped is never started";
}

TEST(RequestOrder, BeginsABurstWithEachPassOfTheEventLoop)
{
    RequestOrder order;
    const RequestPlace first = order.next(), second = order.next();
    QCoreApplication::processEvents();
    const RequestPlace third = order.next();
    EXPECT_TRUE(first < second && third < first);
}

TEST_F(DecodePoolTest, GivesWhatTookTooLongOneMoreAndLongerTryWhenNothingElseWaits)
{
    DecodePool pool(standIn(), {.slots = 1, .budget = 1s, .longBudget = 60s});
    const auto later = submit(pool, file(u"later"_s, "fine"));
    const auto slow = submit(pool, file(u"slow"_s, "slow"));
    ASSERT_TRUE(waitForResults(2));
    EXPECT_THAT(m_results, ElementsAre("later", "slow"));

    DecodePool impatient(standIn(), {.slots = 1, .budget = 1s, .longBudget = 1s});
    const auto hanging = submit(impatient, file(u"hanging"_s, "hang"));
    ASSERT_TRUE(waitForResults(3));
    EXPECT_EQ(m_last.error().fault, DecodeFailure::Fault::OutOfTime);
    EXPECT_THAT(log(), ElementsAre("slow", "fine", "slow", "hang", "hang"));
    // Whom nobody waits for any more gets no second try.
    auto left = submit(impatient, file(u"left"_s, "hang"));
    ASSERT_TRUE(waitUntil([&] { return log().size() == 6; }));
    left.reset();
    const auto last = submit(impatient, file(u"last"_s, "fine"));
    ASSERT_TRUE(waitForResults(4));
    EXPECT_EQ(m_results.back(), "last");
}

TEST_F(DecodePoolTest, AWorkerThatGoesWrongCostsItsJobAlone)
{
    using worker::JobKind;
    DecodePool pool(standIn(), {.slots = 1, .budget = 2s, .longBudget = 2s});
    for (const auto &[kind, deeds] : std::initializer_list<std::pair<JobKind, std::vector<QByteArray>>>{
             {JobKind::StillImage, {"crash", "hang", "huge", "short", "unasked", "garbage"}},
             {JobKind::AudioPeaks, {"few", "nan", "loud", "crash"}},
             {JobKind::Info, {"endless", "backwards", "channels", "unprintable"}}}) {
        for (const QByteArray &deed : deeds) {
            m_results.clear();
            const auto after = submit(pool, file(u"after"_s, "fine"), kind);
            const auto bad = submit(pool, file(u"bad"_s, deed), kind);
            const auto before = submit(pool, file(u"before"_s, "fine"), kind);
            ASSERT_TRUE(waitForResults(3)) << deed.toStdString();
            EXPECT_THAT(m_results, UnorderedElementsAre("after", "bad failed", "before"))
                << deed.toStdString();
        }
    }
}

TEST_F(DecodePoolTest, KnowsAFaultOfTheFileFromOneOfTheSystem)
{
    using Fault = DecodeFailure::Fault;
    ASSERT_EQ(mkfifo(at(u"pipe"_s).c_str(), 0600), 0);
    ASSERT_EQ(mkdir(at(u"folder"_s).c_str(), 0700), 0);
    for (const auto &[program, place, fault] :
         {std::tuple(at(u"no worker"_s), file(u"fine"_s, "fine"), Fault::OfSystem),
          std::tuple(standIn(), at(u"no file"_s), Fault::OfFile),
          std::tuple(standIn(), at(u"pipe"_s), Fault::OfFile), // without waiting for it
          std::tuple(standIn(), at(u"folder"_s), Fault::OfFile),
          std::tuple(standIn(), file(u"bad"_s, "crash"), Fault::OfFile)}) {
        DecodePool pool(program, {.slots = 1, .budget = 60s});
        m_results.clear();
        const auto request = submit(pool, place);
        ASSERT_TRUE(waitForResults(1));
        ASSERT_FALSE(m_last);
        EXPECT_EQ(m_last.error().fault, fault) << place.name().toStdString();
    }
}

// Whatever a decoder has to load or to start must be there before the worker's system calls are filtered.
TEST_F(DecodePoolTest, TheRealWorkerReadsEveryFormat)
{
    using worker::JobKind;
    const QString still = m_files.image(u"a.png"_s, fourColors({640, 360}));
    const auto vips = [&](const QString &name, const QString &arguments = u"copy IN OUT"_s) {
        return m_files.vips(name, still, arguments);
    };
    const auto ffmpeg = [&](const QString &name, const QString &encoder = {}) {
        return m_files.ffmpeg(
            name, {},
            u"-f lavfi -i testsrc2=s=320x180:d=0.4 -f lavfi -i sine=d=0.4 -pix_fmt yuv420p"_s + encoder);
    };
    const std::pair<JobKind, QStringList> jobs[]{
        {JobKind::StillImage,
         {still, vips(u"a.jpg"_s), vips(u"a.webp"_s), vips(u"a.tif"_s),
          vips(u"wide.jpg"_s, u"icc_transform IN OUT p3 --input-profile srgb"_s),
          m_files.heif(u"a.heic"_s, still), m_files.ffmpeg(u"a.gif"_s, still, u"-i IN"_s)}},
        {JobKind::VideoFrame,
         {ffmpeg(u"a.mp4"_s), ffmpeg(u"hevc.mp4"_s, u" -c:v libx265 -x265-params log-level=none"_s),
          ffmpeg(u"av1.mp4"_s, u" -c:v libsvtav1 -preset 12"_s),
          ffmpeg(u"vp9.webm"_s, u" -c:v libvpx-vp9 -pix_fmt yuva420p"_s),
          ffmpeg(u"prores.mov"_s, u" -c:v prores_ks"_s), ffmpeg(u"a.mkv"_s), ffmpeg(u"a.ts"_s)}},
        {JobKind::AudioPeaks,
         {ffmpeg(u"a.wav"_s, u" -vn"_s), ffmpeg(u"a.mp3"_s, u" -vn"_s), ffmpeg(u"a.m4a"_s, u" -vn"_s),
          ffmpeg(u"a.flac"_s, u" -vn"_s), ffmpeg(u"a.caf"_s, u" -vn"_s)}}};
    for (const auto &[kind, files] : jobs) {
        for (const QString &path : files) {
            DecodePool pool(realWorker(), {.slots = 1, .budget = 60s}); // that has seen nothing before
            std::vector<MediaInfo> infos;
            for (const JobKind one : {kind, JobKind::Info}) {
                m_results.clear();
                const auto request = submit(pool, Location::fromText(path), one);
                ASSERT_TRUE(waitForResults(1));
                ASSERT_TRUE(m_last) << path.toStdString() << ": " << m_last.error().message.toStdString();
                infos.push_back(m_last->info);
            }
            EXPECT_EQ(infos[0], infos[1]) << path.toStdString() << ": known without a second job";
        }
    }
}

TEST_F(DecodePoolTest, WorkersHoldNothingOfTheProgramAndEndWithIt)
{
    const FileDescriptor held(open(file(u"held"_s, "by the program").c_str(), O_RDONLY));
    ASSERT_TRUE(held.isOpen());
    const auto isOpenIn = [](const QString &process, const Location &place) {
        const QDir descriptors(u"/proc/%1/fd"_s.arg(process));
        return std::ranges::any_of(
            descriptors.entryList(QDir::Files | QDir::System), [&](const QString &name) {
                return QFileInfo(descriptors.filePath(name)).symLinkTarget() == place.text();
            });
    };
    auto pool = std::make_unique<DecodePool>(realWorker(), DecodePool::Limits{.slots = 1});
    const Location done = file(u"text"_s, "no picture");
    const auto request = submit(*pool, done);
    ASSERT_TRUE(waitForResults(1));
    const auto workers = pool->workerProcessIds();
    ASSERT_EQ(workers.size(), 1u);
    EXPECT_TRUE(isOpenIn(u"self"_s, at(u"held"_s)));
    EXPECT_FALSE(isOpenIn(QString::number(workers.front()), at(u"held"_s)));
    EXPECT_FALSE(isOpenIn(QString::number(workers.front()), done)) << "its disk can be unmounted";
    EXPECT_FALSE(isOpenIn(u"self"_s, done));

    pool.reset();
    EXPECT_NE(kill(pid_t(workers.front()), 0), 0);
    EXPECT_EQ(m_results.size(), 1u);
}

#if !defined(CRATEWELL_SANITIZED)
TEST_F(DecodePoolTest, AnIdleWorkerThatHasDoneEverythingIsSmall)
{
    DecodePool pool(realWorker(), {.slots = 1});
    const QString picture = m_files.image(u"large.jpg"_s, filled({6000, 4000}, Qt::darkCyan));
    const QString film = m_files.ffmpeg(
        u"film.mp4"_s, {},
        u"-f lavfi -i testsrc2=s=1920x1080:d=1 -c:v libx264 -preset ultrafast -pix_fmt yuv420p"_s);
    const QString heic = m_files.heif(u"small.heic"_s, m_files.image(u"small.png"_s, fourColors({640, 360})));
    const auto image = submit(pool, Location::fromText(picture));
    const auto other = submit(pool, Location::fromText(heic));
    const auto video = submit(pool, Location::fromText(film), worker::JobKind::VideoFrame);
    ASSERT_TRUE(waitForResults(3));
    EXPECT_THAT(m_results, UnorderedElementsAre("large.jpg", "small.heic", "film.mp4"));

    const auto workers = pool.workerProcessIds();
    ASSERT_EQ(workers.size(), 1u);
    const auto residentMegabytes = [&] {
        std::ifstream info("/proc/" + std::to_string(workers.front()) + "/statm");
        long total = 0, resident = 0;
        info >> total >> resident;
        return double(resident) * double(sysconf(_SC_PAGESIZE)) / 1e6;
    };
    EXPECT_TRUE(waitUntil([&] { return residentMegabytes() <= 40; })) << residentMegabytes();
    RecordProperty("residentMegabytes", std::to_string(residentMegabytes()));
}
#endif

} // namespace cratewell::test
