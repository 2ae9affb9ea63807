#include "platform/linux/inotify_file_events.h"
#include "platform/linux/inotify_tree.h"

#include "support/wait.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace cratewell {

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

void write(const fs::path &file, std::string_view content = "content")
{
    fs::create_directories(file.parent_path());
    std::ofstream stream(file, std::ios::binary);
    stream << content;
    ASSERT_TRUE(stream.good()) << file;
}

void overwriteInPlace(const fs::path &file)
{
    std::fstream stream(file, std::ios::in | std::ios::out | std::ios::binary);
    stream << "other";
    ASSERT_TRUE(stream.good()) << file;
}

// A folder of its own, followed at "root" in it, and when it was last reported that something changed.
class Followed
{
public:
    Followed()
    {
        QObject::connect(&events, &FileEvents::changed, [this] {
            ++reported;
            m_last.start();
        });
        QObject::connect(&events, &FileEvents::limitReached, [this] { ++limits; });
    }
    // Not QTemporaryDir's own removal: it cannot name what is not UTF-8.
    ~Followed() { fs::remove_all(top()); }
    void watch()
    {
        events.watch(Location::fromBytes((top() / "root").c_str()), {"category", "twin"},
                     std::chrono::system_clock::now());
    }
    fs::path top() const { return m_folder.path().toStdString(); }
    bool isQuiet() const { return !m_last.isValid() || m_last.elapsed() > 600; }

    InotifyFileEvents events;
    int reported = 0;
    int limits = 0;

private:
    QTemporaryDir m_folder;
    QElapsedTimer m_last;
};

enum class Expect { Report, Silence };

struct Step
{
    std::function<void(const fs::path &)> act;
    Expect expected = Expect::Report;
};

struct Story
{
    std::string name;
    std::function<void(const fs::path &)> before;
    std::vector<Step> steps;
};

void makeRoot(const fs::path &top)
{
    write(top / "root/a/deep/file");
    write(top / "root/b/file");
    write(top / "outside/full/of/things");
}

int openedSlowly = -1;
constexpr timespec longAgo[2] = {{1'000'000, 0}, {1'000'000, 0}};

const std::vector<Story> &stories()
{
    using enum Expect;
    static const std::vector<Story> all = {
        {"a file's life",
         makeRoot,
         {{[](auto top) { write(top / "root/a/deep/new"); }},
          {[](auto top) { overwriteInPlace(top / "root/a/deep/file"); }},
          {[](auto top) { fs::rename(top / "root/a/deep/new", top / "root/b/renamed"); }},
          {[](auto top) { fs::rename(top / "root/b/renamed", top / "root/b/file"); }},
          {[](auto top) { ASSERT_EQ(::utimensat(AT_FDCWD, (top / "root/b/file").c_str(), longAgo, 0), 0); }},
          {[](auto top) { fs::remove(top / "root/b/file"); }},
          {[](auto top) { fs::remove_all(top / "root/a"); }}}},
        {"a file written slowly",
         makeRoot,
         {{[](auto top) {
              openedSlowly = ::open((top / "root/b/slow").c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
          }},
          {[](auto) { ASSERT_EQ(::write(openedSlowly, "part", 4), 4); }, Silence},
          {[](auto) { ASSERT_EQ(::close(openedSlowly), 0); }}}},
        {"new folders, several levels at once",
         makeRoot,
         {{[](auto top) { fs::create_directories(top / "root/x/y/\xFFname"); }},
          {[](auto top) { write(top / "root/x/y/\xFFname/file"); }},
          {[](auto top) { overwriteInPlace(top / "root/x/y/\xFFname/file"); }}}},
        {"a folder moved in with content",
         makeRoot,
         {{[](auto top) { fs::rename(top / "outside/full", top / "root/b/full"); }},
          {[](auto top) { overwriteInPlace(top / "root/b/full/of/things"); }}}},
        {"a renamed folder",
         makeRoot,
         {{[](auto top) { fs::rename(top / "root/a", top / "root/c"); }},
          {[](auto top) { overwriteInPlace(top / "root/c/deep/file"); }},
          {[](auto top) { fs::create_directories(top / "root/c/deep/sub"); }},
          {[](auto top) { write(top / "root/c/deep/sub/file"); }}}},
        {"two folders that change names",
         makeRoot,
         {{[](auto top) {
              ASSERT_EQ(::renameat2(AT_FDCWD, (top / "root/a").c_str(), AT_FDCWD, (top / "root/b").c_str(),
                                    RENAME_EXCHANGE),
                        0);
          }},
          {[](auto top) { overwriteInPlace(top / "root/b/deep/file"); }},
          {[](auto top) { overwriteInPlace(top / "root/a/file"); }}}},
        {"a folder moved out",
         makeRoot,
         {{[](auto top) { fs::rename(top / "root/a", top / "outside/a"); }},
          {[](auto top) { write(top / "outside/a/deep/more"); }, Silence},
          {[](auto top) { write(top / "outside/a/more"); }, Silence}}},
        {"the root deleted and made again",
         makeRoot,
         {{[](auto top) { fs::remove_all(top / "root"); }},
          {[](auto top) { write(top / "elsewhere"); }, Silence},
          {[](auto top) { fs::create_directories(top / "root/new"); }},
          {[](auto top) { write(top / "root/new/file"); }}}},
        {"the root replaced by another",
         makeRoot,
         {{[](auto top) {
              fs::rename(top / "root", top / "was");
              fs::rename(top / "outside", top / "root");
          }},
          {[](auto top) { write(top / "was/a/file"); }, Silence},
          {[](auto top) { overwriteInPlace(top / "root/full/of/things"); }}}},
        {"links and hidden folders",
         makeRoot,
         {{[](auto top) { fs::create_directory_symlink("../outside/full", top / "root/link"); }},
          {[](auto top) { overwriteInPlace(top / "outside/full/of/things"); }, Silence},
          {[](auto top) { fs::create_directories(top / "root/.hidden/inner"); }},
          {[](auto top) { write(top / "root/.hidden/inner/file"); }, Silence},
          {[](auto top) { fs::rename(top / "root/.hidden", top / "root/shown"); }},
          {[](auto top) { overwriteInPlace(top / "root/shown/inner/file"); }}}},
        {"the root behind a link",
         [](const fs::path &top) {
             write(top / "real/a/file");
             write(top / "other/a/file");
             fs::create_directory_symlink("real", top / "root");
         },
         {{[](auto top) { overwriteInPlace(top / "real/a/file"); }},
          {[](auto top) {
              fs::create_directory_symlink("other", top / "next");
              fs::rename(top / "next", top / "root");
          }},
          {[](auto top) { overwriteInPlace(top / "other/a/file"); }},
          {[](auto top) { overwriteInPlace(top / "real/a/file"); }, Silence}}},
        {"a category behind a link",
         [](const fs::path &top) {
             write(top / "real/a/file");
             write(top / "other/a/file");
             fs::create_directory(top / "root");
             fs::create_directory_symlink("../real", top / "root/category");
         },
         {{[](auto top) { overwriteInPlace(top / "real/a/file"); }},
          {[](auto top) { fs::create_directories(top / "real/a/new"); }},
          {[](auto top) { write(top / "real/a/new/file"); }},
          {[](auto top) { fs::rename(top / "real", top / "away"); }},
          {[](auto top) { fs::rename(top / "away", top / "real"); }},
          {[](auto top) { overwriteInPlace(top / "real/a/new/file"); }},
          {[](auto top) {
              fs::create_directory_symlink("../other", top / "next");
              fs::rename(top / "next", top / "root/category");
          }},
          {[](auto top) { overwriteInPlace(top / "other/a/file"); }},
          {[](auto top) { overwriteInPlace(top / "real/a/file"); }, Silence}}},
        {"two categories behind links to one folder",
         [](const fs::path &top) {
             write(top / "real/a/file");
             fs::create_directory(top / "root");
             fs::create_directory_symlink("../real", top / "root/category");
             fs::create_directory_symlink("../real", top / "root/twin");
         },
         {{[](auto top) { fs::remove(top / "root/twin"); }},
          {[](auto top) { overwriteInPlace(top / "real/a/file"); }},
          {[](auto top) { fs::create_directory_symlink("../real", top / "root/twin"); }},
          {[](auto top) { fs::remove(top / "root/category"); }},
          {[](auto top) { overwriteInPlace(top / "real/a/file"); }}}},
    };
    return all;
}

// All stories run side by side: their waits are the same waits.
TEST(InotifyFileEvents, FollowEveryChangeBelowTheRootAndNoneBesideIt)
{
    std::vector<std::unique_ptr<Followed>> followed;
    for (const Story &story : stories()) {
        followed.push_back(std::make_unique<Followed>());
        story.before(followed.back()->top());
        followed.back()->watch();
    }
    const auto allQuiet = [&] { return std::ranges::all_of(followed, &Followed::isQuiet); };
    ASSERT_TRUE(test::waitUntil([&] {
        return std::ranges::all_of(followed, [](auto &f) { return f->reported > 0; });
    })) << "what was made just before is reported when the watches stand";
    for (size_t step = 0;; ++step) {
        ASSERT_TRUE(test::waitUntil(allQuiet));
        bool more = false;
        for (size_t i = 0; i < followed.size(); ++i) {
            followed[i]->reported = 0;
            if (step >= stories()[i].steps.size())
                continue;
            more = true;
            stories()[i].steps[step].act(followed[i]->top());
        }
        if (!more)
            break;
        const auto isReported = [&](size_t i) {
            return step >= stories()[i].steps.size() ||
                   stories()[i].steps[step].expected == Expect::Silence || followed[i]->reported > 0;
        };
        for (size_t i = 0; i < followed.size(); ++i)
            ASSERT_TRUE(test::waitUntil([&] { return isReported(i); }, 5s))
                << stories()[i].name << ", step " << step;
        ASSERT_TRUE(test::waitUntil(allQuiet));
        for (size_t i = 0; i < followed.size(); ++i) {
            const std::vector<Step> &steps = stories()[i].steps;
            const bool silent = step < steps.size() && steps[step].expected == Expect::Silence;
            EXPECT_TRUE(!silent || followed[i]->reported == 0) << stories()[i].name << ", step " << step;
            EXPECT_EQ(followed[i]->limits, 0);
        }
    }
}

TEST(InotifyFileEvents, WaitForARootThatDoesNotExistYet)
{
    Followed followed;
    const fs::path root = followed.top() / "not/yet/there";
    followed.events.watch(Location::fromBytes(root.c_str()), {}, std::chrono::system_clock::now());
    fs::create_directories(followed.top() / "not/yet");
    fs::create_directories(root / "inner");
    ASSERT_TRUE(test::waitUntil([&] { return followed.reported > 0; }));
    ASSERT_TRUE(test::waitUntil([&] { return followed.isQuiet(); }));
    followed.reported = 0;
    write(root / "inner/file");
    EXPECT_TRUE(test::waitUntil([&] { return followed.reported > 0; }));
}

TEST(InotifyFileEvents, TellABurstAFewTimesAndItsEndAlways)
{
    Followed followed;
    write(followed.top() / "root/file");
    followed.watch();
    ASSERT_TRUE(test::waitUntil([&] { return followed.reported > 0; }));
    ASSERT_TRUE(test::waitUntil([&] { return followed.isQuiet(); }));
    followed.reported = 0;
    QElapsedTimer clock;
    clock.start();
    int atTheLast = 0;
    for (int i = 0; i < 5000; ++i) {
        write(followed.top() / "root" / ("folder" + std::to_string(i % 40)) / std::to_string(i));
        QCoreApplication::processEvents();
        atTheLast = followed.reported;
    }
    const qint64 burst = clock.elapsed();
    EXPECT_TRUE(test::waitUntil([&] { return followed.reported > atTheLast; }));
    ASSERT_TRUE(test::waitUntil([&] { return followed.isQuiet(); }));
    EXPECT_LE(followed.reported, burst / 400 + 3);
}

TEST(InotifyFileEvents, StopAndChangeRootsAtOnce)
{
    Followed followed;
    write(followed.top() / "root/file");
    write(followed.top() / "next/file");
    followed.watch();
    followed.events.watch(Location::fromBytes((followed.top() / "next").c_str()), {},
                          std::chrono::system_clock::now());
    ASSERT_TRUE(test::waitUntil([&] { return followed.reported > 0; }));
    ASSERT_TRUE(test::waitUntil([&] { return followed.isQuiet(); }));
    followed.reported = 0;
    overwriteInPlace(followed.top() / "root/file");
    overwriteInPlace(followed.top() / "next/file");
    ASSERT_TRUE(test::waitUntil([&] { return followed.reported > 0; }));
    ASSERT_TRUE(test::waitUntil([&] { return followed.isQuiet(); }));
    EXPECT_EQ(followed.reported, 1);

    overwriteInPlace(followed.top() / "next/file");
    followed.events.stop();
    followed.reported = 0;
    followed.events.watch(Location(), {}, std::chrono::system_clock::now());
    QElapsedTimer clock;
    clock.start();
    ASSERT_TRUE(test::waitUntil([&] { return clock.hasExpired(700); }));
    EXPECT_EQ(followed.reported, 0);
}

TEST(InotifyTree, StartsAfreshWhenTheQueueOverflowed)
{
    QFile limit(u"/proc/sys/fs/inotify/max_queued_events"_s);
    ASSERT_TRUE(limit.open(QFile::ReadOnly));
    const int queue = limit.readAll().trimmed().toInt();
    ASSERT_GT(queue, 0);
    const QTemporaryDir folder;
    const fs::path root = folder.path().toStdString();
    const std::atomic<bool> interrupted = false;
    InotifyTree tree(interrupted);
    tree.follow(Location::fromBytes(root.c_str()), {}, std::chrono::system_clock::now());
    // Two names in turn, as equal events in a row are one.
    write(root / "a");
    for (int i = 0; i <= queue / 2; ++i)
        fs::rename(root / (i % 2 ? "b" : "a"), root / (i % 2 ? "a" : "b"));
    fs::create_directories(root / "unseen/folder");
    const auto readAll = [&tree] {
        bool changed = false;
        while (tree.read())
            changed = true;
        return changed;
    };
    EXPECT_TRUE(readAll());
    EXPECT_FALSE(readAll());
    write(root / "unseen/folder/file");
    EXPECT_TRUE(readAll());
}

constexpr int watchLimit = 40;

// Runs where the system grants no more than `watchLimit` watches.
TEST(InotifyLimitChild, DISABLED_ChecksWhatItCannotWatch)
{
    Followed followed;
    const auto file = [&](int i) { return followed.top() / "root" / std::to_string(i) / "file"; };
    const int folders = 2 * watchLimit;
    for (int i = 0; i < folders; ++i)
        write(file(i));
    followed.watch();
    ASSERT_TRUE(test::waitUntil([&] { return followed.limits > 0; }));
    const auto reportsWhen = [&](const std::function<void()> &act) {
        if (!test::waitUntil([&] { return followed.reported > 0 && followed.isQuiet(); }))
            return false;
        followed.reported = 0;
        act();
        const bool reported = test::waitUntil([&] { return followed.reported > 0; });
        return reported && test::waitUntil([&] { return followed.isQuiet(); });
    };
    EXPECT_TRUE(reportsWhen([&] {
        for (int i = 0; i < folders; ++i)
            overwriteInPlace(file(i));
    }));
    for (const int i : {0, folders - 1}) {
        EXPECT_TRUE(reportsWhen([&] { write(file(i).parent_path() / "new/sub/file"); })) << i;
        EXPECT_TRUE(reportsWhen([&] { overwriteInPlace(file(i).parent_path() / "new/sub/file"); })) << i;
        EXPECT_TRUE(reportsWhen([&] { fs::remove_all(file(i).parent_path()); })) << i;
    }
    EXPECT_EQ(followed.limits, 1);
}

TEST(InotifyFileEvents, CheckEveryFewSecondsBeyondTheSystemsLimit)
{
    const QString limit = u"echo %1 > /proc/sys/user/max_inotify_watches"_s.arg(watchLimit);
    if (QProcess::execute(u"unshare"_s, {u"-U"_s, u"-r"_s, u"sh"_s, u"-c"_s, limit}) != 0)
        GTEST_SKIP() << "user namespaces are not permitted here";
    QProcess child;
    child.setProcessChannelMode(QProcess::MergedChannels);
    child.start(u"unshare"_s,
                {u"-U"_s, u"-r"_s, u"sh"_s, u"-c"_s, limit + u" && exec \"$0\" \"$@\""_s,
                 QCoreApplication::applicationFilePath(), u"--gtest_filter=InotifyLimitChild.*"_s,
                 u"--gtest_also_run_disabled_tests"_s});
    ASSERT_TRUE(test::waitUntil([&] { return child.state() == QProcess::NotRunning; }, 200s));
    const QByteArray output = child.readAll();
    EXPECT_EQ(child.exitCode(), 0) << output.constData();
    EXPECT_TRUE(output.contains("[  PASSED  ] 1 test")) << output.constData();
}

} // namespace

} // namespace cratewell
