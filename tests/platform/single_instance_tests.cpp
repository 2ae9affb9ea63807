#include "platform/single_instance.h"

#include "support/child.h"
#include "support/wait.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <deque>
#include <gtest/gtest.h>

namespace cratewell {
namespace {

using namespace Qt::StringLiterals;

// Started by the test below in processes of their own: report whether they are the one, which stays.
TEST(SingleInstanceChild, DISABLED_ClaimsAndStays)
{
    SingleInstance instance(Location::fromBytes(qgetenv("CRATEWELL_TEST_FILE")));
    QObject::connect(&instance, &SingleInstance::raiseRequested, [] { test::report("answer: asked"); });
    const bool first = instance.claim();
    test::report(first ? "answer: first" : "answer: second");
    if (first)
        QCoreApplication::exec();
}

TEST(SingleInstance, ElectsExactlyOneOfEightAndTheNextAfterAKill)
{
    const QTemporaryDir folder;
    const test::ChildOptions options{.environment = {{u"CRATEWELL_TEST_FILE"_s, folder.filePath(u"file"_s)}}};
    for (int round = 0; round < 2; ++round) {
        std::deque<test::Child> children;
        while (children.size() < 8)
            children.emplace_back(u"SingleInstanceChild.DISABLED_ClaimsAndStays"_s, options);
        const auto count = [&](const char *answer) {
            qsizetype answers = 0;
            for (test::Child &child : children)
                answers += child.output().count(answer);
            return answers;
        };
        ASSERT_TRUE(test::waitUntil([&] { return count("answer: first") + count("answer: second") == 8; }));
        EXPECT_EQ(count("answer: first"), 1);
        EXPECT_TRUE(test::waitUntil([&] { return count("answer: asked") == 7; }));
    }
}

TEST(SingleInstance, IsOnePerFileAndDoesNotWaitLongForAHungOne)
{
    const QTemporaryDir folder;
    const Location file = Location::fromText(folder.filePath(u"defaults.json"_s));
    SingleInstance first(file);
    ASSERT_TRUE(first.claim());
    EXPECT_TRUE(SingleInstance(Location::fromText(folder.filePath(u"other.json"_s))).claim());
    // In one thread the first cannot answer.
    QElapsedTimer clock;
    clock.start();
    EXPECT_FALSE(SingleInstance(file).claim());
    EXPECT_LT(clock.elapsed(), 3000);
}

} // namespace
} // namespace cratewell
