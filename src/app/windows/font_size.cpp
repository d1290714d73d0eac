// SPDX-License-Identifier: MIT
#include "app/windows/font_size.h"

#include <QString>
#include <algorithm>
#include <cmath>
#include <limits>

#include "foundation/checked.h"
#include "foundation/print.h"

namespace vell {
namespace {

constexpr qint64 smallestPainted = 4;
constexpr qint64 largestPainted = 288;

/// The size with its fraction dropped.
qint64 wholePoints(double size) {
    // 2^63 is a double but not a 64-bit integer.
    constexpr double limit = 9223372036854775808.0;
    if (!std::isfinite(size) || size >= limit || size < -limit)
        foundation::fatal("a font size that is not an integer");
    return static_cast<qint64>(size);
}

}  // namespace

qint64 fontSizeAfter(FontAction action, qint64 fontSize, double panelPointSize) {
    switch (action) {
        case FontAction::viaPanel:
            return wholePoints(panelPointSize);
        case FontAction::sizeUp:
            return foundation::checkedAdd<qint64>(fontSize, 1);
        case FontAction::sizeDown:
            return foundation::checkedSubtract<qint64>(fontSize, 1);
        case FontAction::addTrait:
        case FontAction::removeTrait:
            foundation::print(u"ADD traits");
            return fontSize;
        case FontAction::noChange:
        case FontAction::heavier:
        case FontAction::lighter:
            break;
    }
    foundation::print(QStringLiteral("CHANGE FONT: ") + QString::number(int(action)));
    return fontSize;
}

FontAction panelAction(const QFont& before, const QFont& after) {
    if (before.pointSizeF() != after.pointSizeF()) return FontAction::viaPanel;
    const int traitsBefore = int(before.bold()) + int(before.italic());
    const int traitsAfter = int(after.bold()) + int(after.italic());
    if (traitsAfter > traitsBefore) return FontAction::addTrait;
    if (traitsAfter < traitsBefore) return FontAction::removeTrait;
    return FontAction::noChange;
}

double paintableFontSize(qint64 fontSize) {
    return static_cast<double>(std::clamp(fontSize, smallestPainted, largestPainted));
}

}  // namespace vell
