#pragma once

#include <QString>
#include <tl/expected.hpp>

namespace cratewell {

// Why a disk, media or program operation failed, in the platform's own words, ready to be shown.
struct [[nodiscard]] Error
{
    QString message;
    // The errno value that it stems from; 0 when the system refused nothing.
    int code = 0;

    bool is(int errnoValue) const { return code == errnoValue; }

    // The system's description of an errno value, after what was being done: "Hit.wav: Permission denied".
    static Error fromErrno(int code, const QString &subject = {});
};

// What a call that can fail returns.
template<typename T> using Result = tl::expected<T, Error>;

// For a return statement: `return systemFailure(errno, file.name());`
inline tl::unexpected<Error> systemFailure(int code, const QString &subject = {})
{
    return tl::unexpected(Error::fromErrno(code, subject));
}

} // namespace cratewell
