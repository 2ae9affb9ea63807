#pragma once

#include "integrations/inserter.h"
#include "media/blend_mode.h"

namespace cratewell {

// Inserts through our panel inside Premiere. No panel answers this version: every insert says so.
class PremiereBridge final : public EditorBridge
{
public:
    QCoro::Task<InsertResult> insert(const Asset &asset) override;

    // What the panel calls this blend mode.
    static int blendNumber(BlendMode mode);
};

} // namespace cratewell
