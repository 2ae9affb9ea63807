#pragma once

#include "integrations/inserter.h"
#include "media/blend_mode.h"
#include "platform/system_paths.h"

namespace cratewell {

// Inserts through Resolve's scripting interface, by a script in a Python process of its own. Where Resolve
// cannot be reached that way, the request stays queued for its menu.
class ResolveBridge final : public EditorBridge
{
public:
    // The script is killed after `limit`.
    ResolveBridge(const Prefs &prefs, SystemPaths paths,
                  std::chrono::milliseconds limit = std::chrono::seconds(20));

    QCoro::Task<InsertResult> insert(const Asset &asset) override;

    // What Resolve's timeline items call this composite mode.
    static int blendNumber(BlendMode mode);

private:
    const Prefs &m_prefs;
    SystemPaths m_paths;
    std::chrono::milliseconds m_limit;
};

// The result a script's last line stands for; nothing when Resolve was not reached.
std::optional<InsertResult> resolveResult(const std::optional<QString> &answer);

} // namespace cratewell
