#include "platform/single_instance.h"

#include "support/wait.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace cratewell {

namespace {

using namespace Qt::StringLiterals;

// Started by the test below in processes of their own: tell whether they are the one, which stays.
TEST(SingleInstanceChild, DISABLED_ClaimsAndStays)
{
    SingleInstance instance(Location::fromBytes(qgetenv("CRATEWELL_TEST_FILE")));
    QObject::connect(&instance, &SingleInstance::raiseRequested, [] {
        std::puts("answer: asked");
        std::fflush(stdout);
    });
    const bool first = instance.claim();
    std::puts(first ? "answer: first" : "answer: second");
    std::fflush(stdout);
    if (first)
        QCoreApplication::exec();
}

struct Child
{
    explicit Child(const Location &file)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"CRATEWELL_TEST_FILE"_s, file.text());
        process.setProcessEnvironment(environment);
        process.start(QCoreApplication::applicationFilePath(),
                      {u"--gtest_filter=SingleInstanceChild.*"_s, u"--gtest_also_run_disabled_tests"_s});
    }
    ~Child()
    {
        process.kill();
        process.waitForFinished();
    }
    bool says(const char *word)
    {
        output += process.readAllStandardOutput();
        return output.contains(QByteArray("answer: ") + word);
    }
    qsizetype count(const char *word)
    {
        says(word);
        return output.count(QByteArray("answer: ") + word);
    }

    QProcess process;
    QByteArray output;
};

TEST(SingleInstance, ElectsExactlyOneOfEightAndTheNextAfterAKill)
{
    const QTemporaryDir folder;
    const Location file = Location::fromText(folder.filePath(u"defaults.json"_s));
    for (int round = 0; round < 3; ++round) {
        std::vector<std::unique_ptr<Child>> children;
        children.reserve(8);
        for (int i = 0; i < 8; ++i)
            children.push_back(std::make_unique<Child>(file));
        ASSERT_TRUE(test::waitUntil([&] {
            return std::ranges::all_of(
                children, [](auto &child) { return child->says("first") || child->says("second"); });
        }));
        EXPECT_EQ(std::ranges::count_if(children, [](auto &child) { return child->says("first"); }), 1);
        const auto first = std::ranges::find_if(children, [](auto &child) { return child->says("first"); });
        EXPECT_TRUE(test::waitUntil([&] { return (*first)->count("asked") == 7; }));
    }
}

TEST(SingleInstance, IsOnePerFileAndDoesNotWaitLongForAHungOne)
{
    const QTemporaryDir folder;
    const Location file = Location::fromText(folder.filePath(u"defaults.json"_s));
    SingleInstance first(file);
    ASSERT_TRUE(first.claim());
    EXPECT_TRUE(first.claim());
    SingleInstance other(Location::fromText(folder.filePath(u"other.json"_s)));
    EXPECT_TRUE(other.claim());

    // In one thread the first cannot answer.
    QElapsedTimer clock;
    clock.start();
    SingleInstance second(file);
    EXPECT_FALSE(second.claim());
    EXPECT_LT(clock.elapsed(), 3000);
}

} // namespace

} // namespace cratewell
