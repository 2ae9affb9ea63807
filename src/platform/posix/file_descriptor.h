#pragma once

#include "platform/error.h"
#include "platform/location.h"

#include <sys/types.h>
#include <utility>

namespace cratewell {

// Owns an open file, folder or socket. Where a function takes an int instead, the descriptor stays the
// caller's.
class FileDescriptor
{
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int number) : m_number(number) {}
    FileDescriptor(FileDescriptor &&other) noexcept : m_number(other.release()) {}
    FileDescriptor &operator=(FileDescriptor &&other) noexcept;
    ~FileDescriptor();

    bool isOpen() const { return m_number >= 0; }
    int number() const { return m_number; } // -1: none
    int release() { return std::exchange(m_number, -1); }
    // Some file systems report only here that the disk is full.
    [[nodiscard]] Result<void> close();

private:
    int m_number = -1;
};

// open() and openat(): closed on exec, never a controlling terminal, repeated when interrupted. `folder` is
// an open folder or AT_FDCWD.
[[nodiscard]] Result<FileDescriptor> openFile(const Location &file, int flags, mode_t mode = 0600);
[[nodiscard]] Result<FileDescriptor> openAt(int folder, const QByteArray &name, int flags,
                                            mode_t mode = 0600);

// Opens what lies below the open folder `root`, without following any symbolic link: ELOOP when one is on the
// way or at the end, EXDEV when the path is absolute or has a "..". "." is the root itself.
[[nodiscard]] Result<FileDescriptor> openBeneath(int root, const QByteArray &relativePath, int flags,
                                                 mode_t mode = 0600);

// Returns when the file (or the folder's names) has reached the disk.
[[nodiscard]] Result<void> flush(int descriptor);

// No descriptor from `first` on survives the next exec. May be called between fork and exec.
void closeOnExecFrom(int first);

} // namespace cratewell
