#pragma once

namespace cratewell {

// Whether the start tidies the vault: purges the trash, removes what a killed program left behind. Skipped
// where nobody is at the keyboard.
enum class StartupMaintenance { Run, Skip };

} // namespace cratewell
