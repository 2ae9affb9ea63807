#pragma once

#include <QtGlobal>

namespace cratewell {

// What is known of a preview for one version of its file: nothing yet, the preview, or that there can be
// none.
enum class PreviewState : quint8 { Missing, Ready, Failed };

} // namespace cratewell
