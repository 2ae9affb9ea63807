#pragma once

#include <QString>
#include <array>

namespace cratewell {

// The compositing modes the whole program shares, in picker order.
enum class BlendMode : quint8 { Normal, Screen, Add, Overlay, SoftLight, Multiply };

inline constexpr std::array allBlendModes{BlendMode::Normal,  BlendMode::Screen,    BlendMode::Add,
                                          BlendMode::Overlay, BlendMode::SoftLight, BlendMode::Multiply};

QString rawValue(BlendMode mode); // "normal" ... "softLight" ...
QString label(BlendMode mode);    // "Soft Light"
// The mode a stored text names, case-sensitive; Screen for any other text.
BlendMode blendModeFromRawValue(const QString &text);

} // namespace cratewell
