#include "media/media.h"

#include <array>
#include <charconv>
#include <cmath>

namespace cratewell {

using namespace Qt::StringLiterals;

namespace {

// Rounds as printf does, which Qt does not for a number in the very middle: 0.25 is 0.2.
QString tenths(double seconds)
{
    std::array<char, 16> text;
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), seconds, std::chars_format::fixed, 1);
    return QString::fromLatin1(text.data(), end.ptr - text.data());
}

} // namespace

QString timeString(double seconds)
{
    if (!std::isfinite(seconds) || seconds < 0)
        return u"0:00"_s;
    if (seconds < 10)
        return tenths(seconds) + u's';
    const double longest = 9e15; // beyond it a double has no single seconds
    const qint64 whole = qint64(std::min(seconds, longest));
    return u"%1:%2"_s.arg(whole / 60).arg(whole % 60, 2, 10, QChar(u'0'));
}

} // namespace cratewell
