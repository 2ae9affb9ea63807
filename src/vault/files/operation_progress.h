#pragma once

#include <QtGlobal>

#include <atomic>

namespace cratewell {

// How far a piece of work on files has come. The file thread counts, the main thread looks and cancels.
struct OperationProgress
{
    std::atomic<int> filesDone = 0;
    std::atomic<int> filesTotal = 0; // 0 while they are being counted
    std::atomic<qint64> bytesDone = 0;
    std::atomic<qint64> bytesTotal = 0;
    std::atomic<bool> canceled = false;
};

} // namespace cratewell
