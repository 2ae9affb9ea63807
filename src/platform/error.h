#pragma once

#include <QString>
#include <tl/expected.hpp>

namespace cratewell {

// Why a disk, media or program operation failed, in the platform's own words, ready to be shown.
struct Error
{
    QString message;

    // The system's description of an errno value, after what was being done: "Hit.wav: Permission denied".
    static Error fromErrno(int code, const QString &subject = {});
};

template<typename T> using Result = tl::expected<T, Error>;

} // namespace cratewell
