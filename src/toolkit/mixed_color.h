#pragma once
// SPDX-License-Identifier: MIT

#include <QColor>

namespace vell {

/// The opaque colour that is seen where this part of another lies above an opaque one.
[[nodiscard]] inline QColor mixed(const QColor& below, const QColor& above, float part) {
    const auto mix = [part](float a, float b) { return a + (b - a) * part; };
    return QColor::fromRgbF(mix(below.redF(), above.redF()), mix(below.greenF(), above.greenF()),
                            mix(below.blueF(), above.blueF()));
}

}  // namespace vell
