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
#include <unistd.h>

namespace cratewell::test {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::UnorderedElementsAre;
using worker::JobKind;

// Jobs named after their files; what happens to each is noted in the order it happens.
class DecodePoolTest : public testing::Test
{
protected:
    DecodePoolTest() { qputenv("CRATEWELL_STAND_IN_LOG", m_files.path(u"log"_s).toUtf8()); }

    Location at(const QString &name) const { return Location::fromText(m_files.path(name)); }
    Location file(const QString &name, const QByteArray &content)
    {
        return Location::fromText(m_files.bytes(name, content));
    }
    // In a burst of its own, unless a place is given.
    std::unique_ptr<PreviewRequest> submit(DecodePool &pool, const Location &file,
                                           JobKind kind = JobKind::StillImage, RequestPlace place = {})
    {
        if (place.number == 0)
            place.burst = place.number = ++m_requests;
        const DecodeRequest request{.file = file, .kind = kind, .maxSide = 64, .fraction = 0.5, .count = 240};
        const auto finished = [this, name = file.name().toStdString()](const DecodeResult &result) {
            m_last = result;
            m_results.push_back(name + (result ? "" : " failed"));
        };
        return pool.submit({.key = file.bytes(), .request = request, .place = place, .finished = finished});
    }
    [[nodiscard]] bool waitForResults(size_t count)
    {
        return waitUntil([&] { return m_results.size() >= count; });
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

    MadeMedia m_files;
    const Location m_standIn = Location::fromText(QStringLiteral(CRATEWELL_STAND_IN_WORKER));
    const Location m_realWorker = Location::fromText(QStringLiteral(CRATEWELL_REAL_WORKER));
    std::vector<std::string> m_results;
    DecodeResult m_last;
    quint64 m_requests = 0;
};

TEST_F(DecodePoolTest, DoesWhatWasStartedAndOnlyOnceAtATime)
{
    DecodePool pool(m_standIn, {.slots = 2, .budget = 60s});
    auto first = submit(pool, file(u"slow"_s, "hang"));
    ASSERT_TRUE(waitUntil([&] { return log().size() == 1; }));
    first.reset();
    auto again = submit(pool, at(u"slow"_s));
    kill(pid_t(pool.workerProcessIds().front()), SIGKILL);
    ASSERT_TRUE(waitForResults(1));
    // Over, the same key is new work, in which a request that outlives its job has no say.
    const auto later = submit(pool, file(u"slow"_s, "now quick"));
    again.reset();
    ASSERT_TRUE(waitForResults(2));
    // A worker that dies between jobs costs nothing.
    for (const qint64 worker : pool.workerProcessIds())
        kill(pid_t(worker), SIGKILL);
    const auto after = submit(pool, at(u"slow"_s));
    ASSERT_TRUE(waitForResults(3));
    EXPECT_THAT(m_results, ElementsAre("slow failed", "slow", "slow"));
    EXPECT_THAT(log(), ElementsAre("hang", "now quick", "now quick"));
}

TEST_F(DecodePoolTest, StartsByRankThenTheNewestBurstAndInThatTheFirstButNothingThatWasDropped)
{
    using enum RequestPlace::Rank;
    DecodePool pool(m_standIn, {.slots = 1});
    std::vector<std::unique_ptr<PreviewRequest>> requests;
    quint64 number = 0;
    for (const auto &[name, rank, burst] : {std::tuple(u"a"_s, Usual, 1),
                                            {u"b"_s, Usual, 1},
                                            {u"c"_s, Interactive, 1},
                                            {u"d"_s, Usual, 2},
                                            {u"f"_s, Interactive, 2},
                                            {u"b"_s, Interactive, 3},
                                            {u"b"_s, Usual, 3}, // does not lower it
                                            {u"g"_s, Usual, 3}})
        requests.push_back(
            submit(pool, file(name, "fine"), JobKind::StillImage, {rank, quint64(burst), ++number}));
    requests.erase(requests.begin() + 1); // of "b", which two more requests keep
    requests.pop_back();
    ASSERT_TRUE(waitForResults(5));
    EXPECT_THAT(m_results, ElementsAre("b", "f", "c", "d", "a"));
    EXPECT_EQ(log().size(), 5U) << "what was dropped is never started";
}

TEST(RequestOrder, BeginsABurstWithEachPassOfTheEventLoop)
{
    RequestOrder order;
    const RequestPlace first = order.next(), second = order.next();
    QCoreApplication::processEvents();
    EXPECT_TRUE(first < second && order.next() < first);
}

TEST_F(DecodePoolTest, GivesWhatTookTooLongOneMoreAndLongerTryWhenNothingElseWaits)
{
    DecodePool pool(m_standIn, {.slots = 1, .budget = 1s, .longBudget = 60s});
    const auto later = submit(pool, file(u"later"_s, "fine"));
    const auto slow = submit(pool, file(u"slow"_s, "slow"));
    ASSERT_TRUE(waitForResults(2));
    EXPECT_THAT(m_results, ElementsAre("later", "slow"));

    DecodePool impatient(m_standIn, {.slots = 1, .budget = 1s, .longBudget = 1s});
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
    DecodePool pool(m_standIn, {.slots = 1, .budget = 2s, .longBudget = 2s});
    for (const auto &[kind, deeds] : {std::pair(JobKind::StillImage, "crash hang huge short unasked garbage"),
                                      {JobKind::AudioPeaks, "few nan"},
                                      {JobKind::Info, "endless"}}) {
        for (const QByteArray &deed : QByteArray(deeds).split(' ')) {
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

TEST_F(DecodePoolTest, BlamesTheFileForACrashAndTheSystemForAMissingWorker)
{
    using Fault = DecodeFailure::Fault;
    for (const auto &[program, fault] :
         {std::pair(m_standIn, Fault::OfFile), {at(u"no worker"_s), Fault::OfSystem}}) {
        DecodePool pool(program, {.slots = 1});
        m_results.clear();
        const auto request = submit(pool, file(u"bad"_s, "crash"));
        ASSERT_TRUE(waitForResults(1));
        EXPECT_EQ(m_last.error().fault, fault);
    }
}

// Whatever a decoder has to load or to start must be there before the worker's system calls are filtered.
TEST_F(DecodePoolTest, TheRealWorkerReadsEveryFormat)
{
    const QString still = m_files.image(u"a.png"_s, fourColors({640, 360}));
    const auto vips = [&](const QString &name, const QString &arguments = u"copy IN OUT"_s) {
        return m_files.vips(name, still, arguments);
    };
    const auto ffmpeg = [&](const QString &name, const QString &encoder = {}) {
        return m_files.ffmpeg(
            name, {},
            u"-f lavfi -i testsrc2=s=320x180:d=0.4 -f lavfi -i sine=d=0.4 -pix_fmt yuv420p"_s + encoder);
    };
    QStringList sounds;
    for (const QString &name : {u"a.wav"_s, u"a.mp3"_s, u"a.m4a"_s, u"a.flac"_s, u"a.caf"_s})
        sounds << ffmpeg(name, u" -vn"_s);
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
        {JobKind::AudioPeaks, sounds}};
    for (const auto &[kind, files] : jobs) {
        for (const QString &path : files) {
            DecodePool pool(m_realWorker, {.slots = 1, .budget = 60s}); // that has seen nothing before
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

TEST_F(DecodePoolTest, AnIdleWorkerIsSmallAndHoldsNothingOfTheProgramAndEndsWithIt)
{
    const Location held = file(u"held"_s, "by the program");
    const FileDescriptor descriptor(open(held.c_str(), O_RDONLY));
    const auto isOpenIn = [](const QString &process, const Location &place) {
        const QDir descriptors(u"/proc/%1/fd"_s.arg(process));
        return std::ranges::any_of(
            descriptors.entryInfoList(QDir::Files | QDir::System),
            [&](const QFileInfo &open) { return open.symLinkTarget() == place.text(); });
    };
    auto pool = std::make_unique<DecodePool>(m_realWorker, DecodePool::Limits{.slots = 1});
    const QString picture = m_files.image(u"large.jpg"_s, filled({6000, 4000}, Qt::darkCyan));
    const QString small = m_files.heif(u"a.heic"_s, m_files.image(u"a.png"_s, fourColors({640, 360})));
    const QString film = m_files.ffmpeg(
        u"film.mp4"_s, {},
        u"-f lavfi -i testsrc2=s=1920x1080:d=1 -c:v libx264 -preset ultrafast -pix_fmt yuv420p"_s);
    const auto image = submit(*pool, Location::fromText(picture));
    const auto other = submit(*pool, Location::fromText(small));
    const auto video = submit(*pool, Location::fromText(film), JobKind::VideoFrame);
    ASSERT_TRUE(waitForResults(3));
    EXPECT_THAT(m_results, UnorderedElementsAre("large.jpg", "a.heic", "film.mp4"));

    const auto workers = pool->workerProcessIds();
    ASSERT_EQ(workers.size(), 1u);
    const QString worker = QString::number(workers.front());
    EXPECT_TRUE(isOpenIn(u"self"_s, held));
    EXPECT_FALSE(isOpenIn(worker, held));
    for (const QString &process : {worker, u"self"_s})
        EXPECT_FALSE(isOpenIn(process, Location::fromText(film))) << "its disk can be unmounted";
#if !defined(CRATEWELL_SANITIZED)
    const auto residentMegabytes = [&] {
        std::ifstream info("/proc/" + worker.toStdString() + "/statm");
        long total = 0, resident = 0;
        info >> total >> resident;
        return double(resident) * double(sysconf(_SC_PAGESIZE)) / 1e6;
    };
    EXPECT_TRUE(waitUntil([&] { return residentMegabytes() <= 40; })) << residentMegabytes();
    RecordProperty("residentMegabytes", std::to_string(residentMegabytes()));
#endif
    pool.reset();
    EXPECT_NE(kill(pid_t(workers.front()), 0), 0);
}

} // namespace cratewell::test
