// SPDX-License-Identifier: MIT
#include "app/windows/font_size.h"

#include <QString>
#include <cmath>
#include <limits>

#include "foundation/checked.h"
#include "foundation/print.h"

namespace vell {
namespace {

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

}  // namespace vell
