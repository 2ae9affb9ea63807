#include "media/media_info.h"

namespace cratewell {

QString codecText(const MediaInfo &info)
{
    QString text;
    for (const int shift : {24, 16, 8, 0})
        text += QLatin1Char(char(info.codec >> shift & 0xff));
    return info.hasVideo() ? text.trimmed() : QString();
}

} // namespace cratewell
