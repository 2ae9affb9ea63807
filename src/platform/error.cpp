#include "platform/error.h"

#include <system_error>

namespace cratewell {

Error Error::fromErrno(int code, const QString &subject)
{
    const QString reason = QString::fromLocal8Bit(std::generic_category().message(code).c_str());
    return {subject.isEmpty() ? reason : subject + QStringLiteral(": ") + reason, code};
}

} // namespace cratewell
