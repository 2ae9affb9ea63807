#include "integrations/premiere_bridge.h"

namespace cratewell {

using namespace Qt::StringLiterals;

QCoro::Task<InsertResult> PremiereBridge::insert(const Asset &)
{
    co_return InsertResult{false,
                           u"Premiere didn't answer. In Premiere open Window › Extensions › Cratewell once; "
                           "it stays connected after that."_s};
}

int PremiereBridge::blendNumber(BlendMode mode)
{
    switch (mode) {
    case BlendMode::Normal:
        return 0;
    case BlendMode::Screen:
        return 8;
    case BlendMode::Add:
        return 10;
    case BlendMode::Overlay:
        return 12;
    case BlendMode::SoftLight:
        return 13;
    case BlendMode::Multiply:
        return 3;
    }
    return blendNumber(BlendMode::Screen);
}

} // namespace cratewell
