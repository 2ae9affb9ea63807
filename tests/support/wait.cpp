#include "support/wait.h"

#include <QTest>

namespace cratewell::test {

bool waitUntil(const std::function<bool()> &condition, std::chrono::milliseconds limit)
{
    return QTest::qWaitFor(condition, int(limit.count()));
}

} // namespace cratewell::test
