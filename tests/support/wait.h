#pragma once

#include <chrono>
#include <functional>

namespace cratewell::test {

// Runs the event loop until `condition` holds; false when it does not within `limit`. The result must be
// asserted.
[[nodiscard]] bool waitUntil(const std::function<bool()> &condition,
                             std::chrono::milliseconds limit = std::chrono::seconds(10));

} // namespace cratewell::test
