#include "vault/asset.h"

#include <algorithm>
#include <array>

namespace cratewell {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype longestExtension = 4;

// An extension as a number, so that looking one up costs a comparison per entry; 0 for what is too long.
constexpr quint32 packed(QByteArrayView extension)
{
    if (extension.size() > longestExtension)
        return 0;
    quint32 result = 0;
    for (const char letter : extension) {
        const bool upper = letter >= 'A' && letter <= 'Z';
        result = result << 8 | quint8(upper ? letter - 'A' + 'a' : letter);
    }
    return result;
}

struct Extension
{
    quint32 packed;
    AssetKind kind;
};

constexpr std::array extensions{
    Extension{packed("mov"), AssetKind::Video},  Extension{packed("mp4"), AssetKind::Video},
    Extension{packed("m4v"), AssetKind::Video},  Extension{packed("png"), AssetKind::Image},
    Extension{packed("jpg"), AssetKind::Image},  Extension{packed("jpeg"), AssetKind::Image},
    Extension{packed("tif"), AssetKind::Image},  Extension{packed("tiff"), AssetKind::Image},
    Extension{packed("heic"), AssetKind::Image}, Extension{packed("gif"), AssetKind::Image},
    Extension{packed("webp"), AssetKind::Image}, Extension{packed("cube"), AssetKind::Lut},
    Extension{packed("3dl"), AssetKind::Lut},    Extension{packed("wav"), AssetKind::Audio},
    Extension{packed("aif"), AssetKind::Audio},  Extension{packed("aiff"), AssetKind::Audio},
    Extension{packed("mp3"), AssetKind::Audio},  Extension{packed("m4a"), AssetKind::Audio},
    Extension{packed("caf"), AssetKind::Audio},  Extension{packed("flac"), AssetKind::Audio},
    Extension{packed("aac"), AssetKind::Audio},
};

} // namespace

std::optional<AssetKind> kindOf(QByteArrayView name)
{
    // Asked of every file of a vault: looks no further back than an extension may reach.
    const qsizetype furthest = std::max<qsizetype>(1, name.size() - longestExtension - 1);
    qsizetype dot = name.size() - 1;
    while (dot >= furthest && name[dot] != '.')
        --dot;
    if (dot < furthest)
        return std::nullopt;
    const quint32 wanted = packed(name.sliced(dot + 1));
    const auto found = std::ranges::find(extensions, wanted, &Extension::packed);
    if (wanted == 0 || found == extensions.end())
        return std::nullopt;
    return found->kind;
}

QString rawValue(AssetKind kind)
{
    switch (kind) {
    case AssetKind::Video:
        return u"video"_s;
    case AssetKind::Image:
        return u"image"_s;
    case AssetKind::Lut:
        return u"lut"_s;
    case AssetKind::Audio:
        return u"audio"_s;
    }
    return {};
}

QString kindLabel(AssetKind kind)
{
    switch (kind) {
    case AssetKind::Video:
        return u"Video"_s;
    case AssetKind::Image:
        return u"Still"_s;
    case AssetKind::Lut:
        return u"LUT"_s;
    case AssetKind::Audio:
        return u"Audio"_s;
    }
    return {};
}

} // namespace cratewell
