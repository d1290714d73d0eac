// SPDX-License-Identifier: MIT
#include "app/desktop/secondary_text.h"

#include <QApplication>
#include <QPalette>

namespace vell {
namespace {

constexpr float opacity = 0.55F;

}  // namespace

void repairSecondaryText() {
    QPalette changes = QApplication::palette();  // what was set stays, the rest follows the theme
    bool isChanged = false;
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        QColor text = QApplication::palette().color(group, QPalette::Text);
        const QColor now = QApplication::palette().color(group, QPalette::PlaceholderText);
        if (now.rgb() == text.rgb() && now.alphaF() >= opacity / 2) continue;
        text.setAlphaF(opacity);
        changes.setColor(group, QPalette::PlaceholderText, text);
        isChanged = true;
    }
    if (isChanged) QApplication::setPalette(changes);
}

}  // namespace vell
