#include "platform/linux/inotify_file_events.h"
#include "platform/linux/inotify_tree.h"
#include "platform/mac/watcher_file_events.h"

#include "support/child.h"
#include "support/wait.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace cratewell {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

// A folder of its own, followed at "root" in it, and when it was last reported that something changed.
template<typename Events = InotifyFileEvents> class Followed
{
public:
    explicit Followed(const QByteArray &before)
    {
        QObject::connect(&events, &FileEvents::changed, [this] {
            ++reported;
            m_last.start();
        });
        QObject::connect(&events, &FileEvents::limitReached, [this] { ++limits; });
        shell(before);
        watch("root");
    }
    // Not QTemporaryDir's own removal: it cannot name what is not UTF-8.
    ~Followed() { fs::remove_all(top()); }

    void watch(const char *root)
    {
        events.watch(Location::fromBytes((top() / root).c_str()), {"category", "twin"},
                     std::chrono::system_clock::now());
    }
    void shell(const QByteArray &command) const
    {
        ASSERT_EQ(std::system(("cd '" + m_folder.path().toUtf8() + "' && " + command).constData()), 0)
            << command.constData();
    }
    fs::path top() const { return m_folder.path().toStdString(); }
    bool isQuiet() const { return !m_last.isValid() || m_last.elapsed() > 600; }
    bool reportsAndRests() const
    {
        return test::waitUntil([this] { return reported > 0 && isQuiet(); });
    }
    // Whether what happened before is reported, and then what the command does.
    bool reportsAlso(const QByteArray &command)
    {
        if (!reportsAndRests())
            return false;
        reported = 0;
        shell(command);
        return reportsAndRests();
    }

    Events events;
    int reported = 0;
    int limits = 0;

private:
    QTemporaryDir m_folder;
    QElapsedTimer m_last;
};

const QByteArray makeRoot = "mkdir -p root/a/deep root/b outside/full/of && echo x > root/a/deep/file && "
                            "echo x > root/b/file && echo x > outside/full/of/things";
const QByteArray makeReal = "mkdir -p real/a other/a && echo x > real/a/file && echo x > other/a/file && ";

// Shell commands in the folder around "root", one step each. Each must be reported, but those behind
// "quietly:". "1<>" opens a file without cutting it.
struct Story
{
    QByteArrayList steps;
    QByteArray before = makeRoot;
};

constexpr char quietly[] = "quietly: ";

const std::vector<Story> stories = {
    {{"echo x > root/a/deep/new", "echo other 1<> root/a/deep/file", "mv root/a/deep/new root/b/renamed",
      "mv -f root/b/renamed root/b/file", "touch -c -d 1980-01-01 root/b/file", "rm root/b/file",
      "rm -r root/a"}},
    {{"open", "quietly: part", "close"}},
    // Several levels at once.
    {{"mkdir -p root/x/y/'\xFFname'", "echo x > root/x/y/'\xFFname'/file",
      "echo y 1<> root/x/y/'\xFFname'/file"}},
    // Folders that are moved in, out, renamed and exchanged.
    {{"mv outside/full root/b/full", "echo other 1<> root/b/full/of/things"}},
    {{"mv root/a outside/a", "quietly: echo x > outside/a/deep/more", "quietly: echo x > outside/a/more"}},
    {{"mv root/a root/c", "echo other 1<> root/c/deep/file", "mkdir root/c/deep/sub",
      "echo x > root/c/deep/sub/file"}},
    {{"cd root && mv a c && mv b a && mv c b", "echo other 1<> root/b/deep/file",
      "echo other 1<> root/a/file"}},
    // The root deleted and made again, or replaced by another.
    {{"rm -r root", "quietly: echo x > elsewhere", "mkdir -p root/new/inner",
      "echo x > root/new/inner/file"}},
    {{"mv root was && mv outside root", "quietly: echo x > was/a/file",
      "echo other 1<> root/full/of/things"}},
    // Links and hidden folders.
    {{"ln -s ../outside/full root/link", "quietly: echo other 1<> outside/full/of/things",
      "mkdir -p root/.hidden/inner", "quietly: echo x > root/.hidden/inner/file",
      "mv root/.hidden root/shown", "echo other 1<> root/shown/inner/file"}},
    {{"echo other 1<> real/a/file", "ln -s other next && mv -T next root", "echo y 1<> other/a/file",
      "quietly: echo more 1<> real/a/file"},
     makeReal + "ln -s real root"},
    {{"echo other 1<> real/a/file", "mkdir real/a/new", "echo x > real/a/new/file", "mv real away",
      "mv away real", "echo other 1<> real/a/new/file", "ln -s ../other next && mv -T next root/category",
      "echo other 1<> other/a/file", "quietly: echo more 1<> real/a/file"},
     makeReal + "mkdir root && ln -s ../real root/category"},
    {{"rm root/twin", "echo other 1<> real/a/file", "ln -s ../real root/twin", "rm root/category",
      "echo more 1<> real/a/file"},
     makeReal + "mkdir root && ln -s ../real root/category && ln -s ../real root/twin"}};

void carryOut(const QByteArray &step, const Followed<> &followed)
{
    static std::ofstream slow;
    if (step == "open")
        slow.open(followed.top() / "root/b/slow");
    else if (step == "part")
        slow << "part" << std::flush;
    else if (step == "close")
        slow.close();
    else
        followed.shell(step);
}

// All stories run side by side: their waits are the same waits.
TEST(InotifyFileEvents, FollowEveryChangeBelowTheRootAndNoneBesideIt)
{
    std::vector<std::unique_ptr<Followed<>>> followed;
    for (const Story &story : stories)
        followed.push_back(std::make_unique<Followed<>>(story.before));
    const auto allQuiet = [&] { return std::ranges::all_of(followed, &Followed<>::isQuiet); };
    ASSERT_TRUE(test::waitUntil([&] {
        return std::ranges::all_of(followed, [](auto &f) { return f->reported > 0; });
    })) << "what was made just before is reported when the watches stand";
    for (qsizetype step = 0;; ++step) {
        ASSERT_TRUE(test::waitUntil(allQuiet));
        std::vector<size_t> loud, quiet;
        for (size_t i = 0; i < stories.size(); ++i) {
            followed[i]->reported = 0;
            if (step >= stories[i].steps.size())
                continue;
            QByteArray command = stories[i].steps[step];
            (command.startsWith(quietly) ? quiet : loud).push_back(i);
            carryOut(command.replace(quietly, ""), *followed[i]);
        }
        if (loud.empty() && quiet.empty())
            break;
        for (const size_t i : loud)
            ASSERT_TRUE(test::waitUntil([&] { return followed[i]->reported > 0; }, 5s))
                << stories[i].steps[step].constData();
        ASSERT_TRUE(test::waitUntil(allQuiet));
        for (const size_t i : quiet)
            EXPECT_EQ(followed[i]->reported, 0) << stories[i].steps[step].constData();
    }
}

TEST(InotifyFileEvents, FollowAnotherRootThatDoesNotExistYet)
{
    Followed<> followed("mkdir root && echo x > root/file");
    followed.watch("not/yet/there");
    followed.shell("mkdir -p not/yet && mkdir -p not/yet/there/inner && echo x > not/yet/there/inner/file");
    ASSERT_TRUE(followed.reportsAlso("echo y 1<> not/yet/there/inner/file; echo y 1<> root/file"));
    EXPECT_EQ(followed.reported, 1);
}

TEST(InotifyFileEvents, ReportABurstAFewTimesAndItsEndAlways)
{
    Followed<> followed("mkdir root");
    ASSERT_TRUE(followed.reportsAndRests());
    followed.reported = 0;
    QElapsedTimer clock;
    clock.start();
    int atTheLast = 0;
    for (int i = 0; i < 5000; ++i) {
        const fs::path folder = followed.top() / "root" / std::to_string(i % 40);
        fs::create_directories(folder);
        std::ofstream(folder / std::to_string(i)) << "content";
        QCoreApplication::processEvents();
        atTheLast = followed.reported;
    }
    const qint64 burst = clock.elapsed();
    EXPECT_TRUE(test::waitUntil([&] { return followed.reported > atTheLast; }));
    ASSERT_TRUE(test::waitUntil([&] { return followed.isQuiet(); }));
    EXPECT_LE(followed.reported, burst / 400 + 3);
}

TEST(WatcherFileEvents, FollowTheTreeAndWhatTheWatcherDoesNotReport)
{
    Followed<WatcherFileEvents> followed("mkdir -p root/a linked/inner && echo x > root/a/file");
    for (const char *step :
         {"echo x > root/a/new", "mkdir -p root/b/c && echo x > root/b/c/file", "echo x > root/b/c/more",
          "echo other 1<> root/a/file", "ln -s ../linked root/category", "echo x > linked/inner/file",
          "rm -r root", "mkdir -p root/a && echo x > root/a/file"})
        ASSERT_TRUE(followed.reportsAlso(step)) << step;
}

TEST(InotifyTree, StartsAfreshWhenTheQueueOverflowed)
{
    int queue = 0;
    std::ifstream("/proc/sys/fs/inotify/max_queued_events") >> queue;
    ASSERT_GT(queue, 0);
    const QTemporaryDir folder;
    const fs::path root = folder.path().toStdString();
    const std::atomic<bool> interrupted = false;
    InotifyTree tree(interrupted);
    tree.follow(Location::fromText(folder.path()), {}, std::chrono::system_clock::now());
    // Two names in turn, as equal events in a row are one.
    std::ofstream(root / "a").flush();
    for (int i = 0; i <= queue / 2; ++i)
        fs::rename(root / (i % 2 ? "b" : "a"), root / (i % 2 ? "a" : "b"));
    fs::create_directories(root / "unseen/folder");
    while (tree.read()) {
    }
    std::ofstream(root / "unseen/folder/file").flush();
    EXPECT_TRUE(tree.read());
}

// Runs where the system grants no more than 40 watches.
TEST(InotifyLimitChild, DISABLED_ChecksWhatItCannotWatch)
{
    Followed<> followed("mkdir root && cd root && for i in $(seq 80); do mkdir $i && echo x > $i/file; done");
    ASSERT_TRUE(test::waitUntil([&] { return followed.limits > 0; }));
    EXPECT_TRUE(followed.reportsAlso("for file in root/*/file; do echo y 1<> $file; done"));
    for (const QByteArray folder : {"root/1", "root/80"}) {
        EXPECT_TRUE(
            followed.reportsAlso("mkdir -p " + folder + "/new/sub && echo x > " + folder + "/new/sub/f"));
        EXPECT_TRUE(followed.reportsAlso("echo y 1<> " + folder + "/new/sub/f"));
        EXPECT_TRUE(followed.reportsAlso("rm -r " + folder));
    }
    EXPECT_EQ(followed.limits, 1);
}

TEST(InotifyFileEvents, CheckEveryFewSecondsBeyondTheSystemsLimit)
{
    const QString limit = u"echo 40 > /proc/sys/user/max_inotify_watches"_s;
    const QStringList wrapper{u"unshare"_s, u"-U"_s, u"-r"_s};
    if (!test::isPermitted(wrapper, limit))
        GTEST_SKIP() << "user namespaces are not permitted here";
    test::Child child(
        u"InotifyLimitChild.DISABLED_ChecksWhatItCannotWatch"_s,
        {.wrapper = wrapper + QStringList{u"sh"_s, u"-c"_s, limit + u" && exec \"$0\" \"$@\""_s}});
    EXPECT_TRUE(child.passes(200s));
}

} // namespace
} // namespace cratewell
