#include "media/decoding/decode_failure.h"

#include <algorithm>
#include <array>
#include <cerrno>

namespace cratewell {

DecodeFailure DecodeFailure::ofReading(const Error &error)
{
    constexpr std::array passing{EMFILE, ENFILE, ENOMEM, EIO, ESTALE, ETIMEDOUT, ENOTCONN};
    const bool mayPass = std::ranges::find(passing, error.code) != passing.end();
    return {error, mayPass ? Fault::OfSystem : Fault::OfFile};
}

} // namespace cratewell
