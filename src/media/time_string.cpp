#include "media/media.h"

#include <cmath>

namespace cratewell {

using namespace Qt::StringLiterals;

QString timeString(double seconds)
{
    if (!std::isfinite(seconds) || seconds < 0)
        return u"0:00"_s;
    if (seconds < 10)
        return QString::number(seconds, 'f', 1) + u's';
    const double longest = 9e15; // beyond it a double has no single seconds
    const qint64 whole = qint64(std::min(seconds, longest));
    return u"%1:%2"_s.arg(whole / 60).arg(whole % 60, 2, 10, QChar(u'0'));
}

} // namespace cratewell
