#include "media/blend_mode.h"

namespace cratewell {

namespace {

struct Row
{
    QStringView rawValue;
    QStringView label;
};

// In the order of the enumeration.
constexpr std::array<Row, allBlendModes.size()> rows{{
    {u"normal", u"Normal"},
    {u"screen", u"Screen"},
    {u"add", u"Add"},
    {u"overlay", u"Overlay"},
    {u"softLight", u"Soft Light"},
    {u"multiply", u"Multiply"},
}};

} // namespace

QString rawValue(BlendMode mode)
{
    return rows[size_t(mode)].rawValue.toString();
}

QString label(BlendMode mode)
{
    return rows[size_t(mode)].label.toString();
}

BlendMode blendModeFromRawValue(const QString &text)
{
    for (const BlendMode mode : allBlendModes) {
        if (rows[size_t(mode)].rawValue == text)
            return mode;
    }
    return BlendMode::Screen;
}

} // namespace cratewell
