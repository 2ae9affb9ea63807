#pragma once

#include "platform/error.h"

#include <utility>

namespace cratewell {

// Why there is no result. What is the file's fault stays true for this version of it; what the system could
// not do just now may succeed the next time; what took too long may succeed with more of it.
struct DecodeFailure : Error
{
    enum class Fault : quint8 { OfFile, OfSystem, OutOfTime };

    DecodeFailure(Error error, Fault whose = Fault::OfFile) : Error(std::move(error)), fault(whose) {}
    // Of opening or reading a file.
    static DecodeFailure ofReading(const Error &error);

    // Not to be remembered.
    bool mayPass() const { return fault == Fault::OfSystem; }

    Fault fault;
};

} // namespace cratewell
