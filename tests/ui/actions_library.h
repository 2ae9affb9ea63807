#pragma once

#include "integrations/inserter.h"
#include "platform/fakes/fake_applications.h"
#include "platform/fakes/fake_file_chooser.h"
#include "state/notifications.h"
#include "support/small_library.h"
#include "ui/shell/asset_actions.h"

namespace cratewell::test {

// A small library and all that the user can do with it; only the desktop around it is played.
class ActionsLibrary : public SmallLibrary
{
public:
    // Inserts everything at once.
    struct QuickBridge : EditorBridge
    {
        QCoro::Task<InsertResult> insert(const Asset &asset) override
        {
            inserted += asset.url.baseName();
            co_return InsertResult{true, {}};
        }
        QStringList inserted;
    };

    FakeApplications applications;
    FakeFileChooser chooser;
    Notifications notifications;
    QuickBridge resolve;
    QuickBridge premiere;
    Inserter inserter{prefs, state, applications, notifications, resolve, premiere};
    AssetActions actions{vault, prefs, state, inserter, workspace, chooser};
};

} // namespace cratewell::test
