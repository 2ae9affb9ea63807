#include "platform/linux/inotify_file_events.h"
#include "platform/linux/inotify_tree.h"

#include "support/child.h"
#include "support/wait.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
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

constexpr auto inPlace = std::ios::in | std::ios::out;

void write(const fs::path &file, std::ios::openmode mode = std::ios::out)
{
    fs::create_directories(file.parent_path());
    std::fstream stream(file, mode);
    stream << "content";
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

    bool reportsAndRests() const
    {
        return test::waitUntil([this] { return reported > 0 && isQuiet(); });
    }

    // Whether what happened before is reported, and then what `act` does.
    bool reportsWhen(const std::function<void()> &act)
    {
        if (!reportsAndRests())
            return false;
        reported = 0;
        act();
        return reportsAndRests();
    }

    InotifyFileEvents events;
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
// "quietly:".
struct Story
{
    const char *name;
    QByteArrayList steps;
    QByteArray before = makeRoot;
};

constexpr char quietly[] = "quietly: ";

// "1<>" opens a file without cutting it.
const std::vector<Story> stories = {
    {"a file's life",
     {"echo x > root/a/deep/new", "echo other 1<> root/a/deep/file", "mv root/a/deep/new root/b/renamed",
      "mv -f root/b/renamed root/b/file", "touch -c -d 1980-01-01 root/b/file", "rm root/b/file",
      "rm -r root/a"}},
    {"a file written slowly", {"open", "quietly: part", "close"}},
    {"new folders, several levels at once",
     {"mkdir -p root/x/y/'\xFFname'", "echo x > root/x/y/'\xFFname'/file",
      "echo y 1<> root/x/y/'\xFFname'/file"}},
    {"a folder moved in with content",
     {"mv outside/full root/b/full", "echo other 1<> root/b/full/of/things"}},
    {"a renamed folder",
     {"mv root/a root/c", "echo other 1<> root/c/deep/file", "mkdir root/c/deep/sub",
      "echo x > root/c/deep/sub/file"}},
    {"two folders that change names",
     {"exchange", "echo other 1<> root/b/deep/file", "echo other 1<> root/a/file"}},
    {"a folder moved out",
     {"mv root/a outside/a", "quietly: echo x > outside/a/deep/more", "quietly: echo x > outside/a/more"}},
    {"the root deleted and made again",
     {"rm -r root", "quietly: echo x > elsewhere", "mkdir -p root/new", "echo x > root/new/file"}},
    {"the root replaced by another",
     {"mv root was && mv outside root", "quietly: echo x > was/a/file",
      "echo other 1<> root/full/of/things"}},
    {"links and hidden folders",
     {"ln -s ../outside/full root/link", "quietly: echo other 1<> outside/full/of/things",
      "mkdir -p root/.hidden/inner", "quietly: echo x > root/.hidden/inner/file",
      "mv root/.hidden root/shown", "echo other 1<> root/shown/inner/file"}},
    {"the root behind a link",
     {"echo other 1<> real/a/file", "ln -s other next && mv -T next root", "echo y 1<> other/a/file",
      "quietly: echo more 1<> real/a/file"},
     makeReal + "ln -s real root"},
    {"a category behind a link",
     {"echo other 1<> real/a/file", "mkdir real/a/new", "echo x > real/a/new/file", "mv real away",
      "mv away real", "echo other 1<> real/a/new/file", "ln -s ../other next && mv -T next root/category",
      "echo other 1<> other/a/file", "quietly: echo more 1<> real/a/file"},
     makeReal + "mkdir root && ln -s ../real root/category"},
    {"two categories behind links to one folder",
     {"rm root/twin", "echo other 1<> real/a/file", "ln -s ../real root/twin", "rm root/category",
      "echo more 1<> real/a/file"},
     makeReal + "mkdir root && ln -s ../real root/category && ln -s ../real root/twin"}};

void carryOut(const QByteArray &step, const fs::path &top)
{
    static int slow = -1;
    if (step == "open")
        slow = ::open((top / "root/b/slow").c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
    else if (step == "part")
        ASSERT_EQ(::write(slow, "part", 4), 4);
    else if (step == "close")
        ASSERT_EQ(::close(slow), 0);
    else if (step == "exchange")
        ASSERT_EQ(::renameat2(AT_FDCWD, (top / "root/a").c_str(), AT_FDCWD, (top / "root/b").c_str(),
                              RENAME_EXCHANGE),
                  0);
    else
        ASSERT_EQ(std::system(("cd '" + QByteArray(top.c_str()) + "' && " + step).constData()), 0)
            << step.constData();
}

// All stories run side by side: their waits are the same waits.
TEST(InotifyFileEvents, FollowEveryChangeBelowTheRootAndNoneBesideIt)
{
    std::vector<std::unique_ptr<Followed>> followed;
    for (const Story &story : stories) {
        followed.push_back(std::make_unique<Followed>());
        carryOut(story.before, followed.back()->top());
        followed.back()->watch();
    }
    const auto allQuiet = [&] { return std::ranges::all_of(followed, &Followed::isQuiet); };
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
            carryOut(command.replace(quietly, ""), followed[i]->top());
        }
        if (loud.empty() && quiet.empty())
            break;
        for (const size_t i : loud)
            ASSERT_TRUE(test::waitUntil([&] { return followed[i]->reported > 0; }, 5s))
                << stories[i].name << ", step " << step;
        ASSERT_TRUE(test::waitUntil(allQuiet));
        for (const size_t i : quiet)
            EXPECT_EQ(followed[i]->reported, 0) << stories[i].name << ", step " << step;
        for (const auto &each : followed)
            EXPECT_EQ(each->limits, 0);
    }
}

TEST(InotifyFileEvents, WaitForARootThatDoesNotExistYet)
{
    Followed followed;
    const fs::path root = followed.top() / "not/yet/there";
    followed.events.watch(Location::fromBytes(root.c_str()), {}, std::chrono::system_clock::now());
    fs::create_directories(followed.top() / "not/yet");
    fs::create_directories(root / "inner");
    EXPECT_TRUE(followed.reportsWhen([&] { write(root / "inner/file"); }));
}

TEST(InotifyFileEvents, TellABurstAFewTimesAndItsEndAlways)
{
    Followed followed;
    write(followed.top() / "root/file");
    followed.watch();
    ASSERT_TRUE(followed.reportsAndRests());
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
    ASSERT_TRUE(followed.reportsWhen([&] {
        write(followed.top() / "root/file", inPlace);
        write(followed.top() / "next/file", inPlace);
    }));
    EXPECT_EQ(followed.reported, 1);

    write(followed.top() / "next/file", inPlace);
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
    EXPECT_TRUE(followed.reportsWhen([&] {
        for (int i = 0; i < folders; ++i)
            write(file(i), inPlace);
    }));
    for (const int i : {0, folders - 1}) {
        EXPECT_TRUE(followed.reportsWhen([&] { write(file(i).parent_path() / "new/sub/file"); })) << i;
        EXPECT_TRUE(followed.reportsWhen([&] { write(file(i).parent_path() / "new/sub/file", inPlace); }))
            << i;
        EXPECT_TRUE(followed.reportsWhen([&] { fs::remove_all(file(i).parent_path()); })) << i;
    }
    EXPECT_EQ(followed.limits, 1);
}

TEST(InotifyFileEvents, CheckEveryFewSecondsBeyondTheSystemsLimit)
{
    const QString limit = u"echo %1 > /proc/sys/user/max_inotify_watches"_s.arg(watchLimit);
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
