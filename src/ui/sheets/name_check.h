#pragma once

#include "platform/location.h"

namespace cratewell {

// What keeps a typed text from being the name of a file or folder, as a sentence for the user; empty when
// nothing does. White space at the ends does not count and "/" becomes "-", as the vault takes names. Whether
// the name is taken already is not looked at.
QString nameProblem(const QString &typed);
// What happens to a file whose new name has another extension than it has now; empty when nothing changes.
QString extensionWarning(const Location &file, const QString &typed);

} // namespace cratewell
