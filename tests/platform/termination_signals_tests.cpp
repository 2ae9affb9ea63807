#include "platform/termination_signals.h"

#include "support/wait.h"

#include <csignal>
#include <gtest/gtest.h>

namespace cratewell {
namespace {

TEST(TerminationSignals, BecomeAQtSignalAndTheSecondEndsAtOnce)
{
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        TerminationSignals listener;
        int requests = 0;
        QObject::connect(&listener, &TerminationSignals::terminationRequested, [&] { ++requests; });
        ASSERT_EQ(::raise(number), 0);
        EXPECT_EQ(requests, 0) << "never from inside the handler";
        EXPECT_TRUE(test::waitUntil([&] { return requests == 1; }));
    }
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto raiseTwice = [] {
        TerminationSignals listener;
        ::raise(SIGTERM);
        ::raise(SIGTERM);
    };
    EXPECT_EXIT(raiseTwice(), testing::KilledBySignal(SIGTERM), "");
}

} // namespace
} // namespace cratewell
