#pragma once

#include "platform/location.h"

namespace cratewell {

// Hidden names for copies that are not complete yet, beside their targets. Each is written to a journal in
// the vault's trash folder before it is handed out, so that the next start finds what a killed program left
// behind; nothing else is ever removed. File thread.
class Temporaries
{
public:
    explicit Temporaries(const Location &root);
    // Every copy has been given its name or removed.
    ~Temporaries();
    Q_DISABLE_COPY_MOVE(Temporaries)

    // A free name in `folder`; 0 or an errno value.
    int name(const Location &folder, Location &result);

    // Removes what an earlier program left half copied in the vault at `root`.
    static void cleanUp(const Location &root);

private:
    int open();

    const Location m_root;
    int m_journal = -1;
};

} // namespace cratewell
