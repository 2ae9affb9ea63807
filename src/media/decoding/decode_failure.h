#pragma once

#include "platform/error.h"

#include <utility>

namespace cratewell {

// Why there is no result. What a file is to blame for stays true for this version of it; what the system
// could not do just now may succeed the next time.
struct DecodeFailure : Error
{
    enum class Fault : quint8 { OfFile, OfSystem };

    DecodeFailure(Error error, Fault whose = Fault::OfFile) : Error(std::move(error)), fault(whose) {}

    Fault fault;
};

} // namespace cratewell
