#include "platform/termination_signals.h"

#include "support/wait.h"

#include <csignal>
#include <gtest/gtest.h>

namespace cratewell {

namespace {

TEST(TerminationSignals, BecomeAQtSignalOnceEachAndGiveTheFormerHandlersBack)
{
    struct sigaction before = {};
    ASSERT_EQ(::sigaction(SIGTERM, nullptr, &before), 0);
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        TerminationSignals listener;
        int requests = 0;
        QObject::connect(&listener, &TerminationSignals::terminationRequested, [&] { ++requests; });
        ASSERT_EQ(::raise(number), 0);
        EXPECT_EQ(requests, 0) << "never from inside the handler";
        EXPECT_TRUE(test::waitUntil([&] { return requests == 1; }));
    }
    struct sigaction after = {};
    ASSERT_EQ(::sigaction(SIGTERM, nullptr, &after), 0);
    EXPECT_EQ(before.sa_handler, after.sa_handler);

    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            TerminationSignals listener;
            ::raise(SIGTERM);
            ::raise(SIGTERM);
        },
        testing::KilledBySignal(SIGTERM), "");
}

} // namespace

} // namespace cratewell
