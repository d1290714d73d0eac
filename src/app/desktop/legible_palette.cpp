// SPDX-License-Identifier: MIT
#include "app/desktop/legible_palette.h"

#include <QApplication>
#include <QPalette>
#include <cstdlib>

#include "toolkit/mixed_color.h"

namespace vell {
namespace {

constexpr float secondaryOpacity = 0.55F;  // as in the timeline
constexpr float textInLinks = 0.5F;
/// Of 255 shades of grey between a link and what is behind it.
constexpr int leastDifference = 60;

bool isSecondary(const QColor& color, const QColor& text) {
    return color.rgb() == text.rgb() && color.alphaF() >= secondaryOpacity / 2;
}

bool isLegible(const QColor& color, const QColor& below) {
    return std::abs(qGray(color.rgb()) - qGray(below.rgb())) >= leastDifference;
}

}  // namespace

void keepPaletteLegible() {
    const QPalette now = QApplication::palette();
    QPalette changes;
    bool isChanged = false;
    const auto change = [&](auto group, auto role, const QColor& color) {
        changes.setColor(group, role, color);
        isChanged = true;
    };
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        QColor text = now.color(group, QPalette::Text);
        const QColor window = now.color(group, QPalette::Window);
        const QColor link = now.color(group, QPalette::Link);
        const QColor clearer = mixed(link, text, textInLinks);
        if (!isLegible(link, window) && isLegible(clearer, window))
            change(group, QPalette::Link, clearer);
        if (isSecondary(now.color(group, QPalette::PlaceholderText), text)) continue;
        text.setAlphaF(secondaryOpacity);
        change(group, QPalette::PlaceholderText, text);
    }
    if (isChanged) QApplication::setPalette(changes);
}

}  // namespace vell
