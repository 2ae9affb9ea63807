#pragma once

#include <QtGlobal>

#include <functional>
#include <string>
#include <string_view>

namespace cratewell::test {

// While one lives, each call by which this thread reads or changes files is shown to `watch` before it is
// made. It may alter the path of an lstat, and the call fails with the errno value it returns unless that is
// 0. What `watch` itself calls is not watched.
class WatchedCalls
{
public:
    // Of a call on a descriptor the path is that of the open file.
    using Watch = std::function<int(std::string_view call, std::string &path)>;
    explicit WatchedCalls(Watch watch);
    ~WatchedCalls();
    Q_DISABLE_COPY_MOVE(WatchedCalls)

private:
    Watch m_watch;
};

} // namespace cratewell::test
