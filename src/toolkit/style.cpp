// SPDX-License-Identifier: MIT
#include "toolkit/style.h"

namespace vell::Style {

const ColorPair& colors(Aqua aqua) {
    const auto rgb = [](float red, float green, float blue) {
        return QColor::fromRgbF(red, green, blue);
    };
    static const std::array<ColorPair, aquaCount> pairs{{
        {rgb(0.15f, 0.5f, 0.8f), rgb(0.5f, 0.85f, 1.0f)},            // blueberry
        {rgb(0.27f, 0.6f, 0.12f), rgb(0.4f, 0.9f, 0.18f)},           // lime
        {rgb(0.4f, 0.4f, 0.4f), rgb(0.6f, 0.6f, 0.6f)},              // graphite
        {rgb(0.0f, 0.5f, 0.71f), rgb(0.0f, 0.58f, 0.71f)},           // bondi
        {rgb(0.9882f, 0.3529f, 0.4f), rgb(0.9882f, 0.3529f, 0.6f)},  // strawberry
        {rgb(0.44f, 0.18f, 0.6f), rgb(0.44f, 0.18f, 0.7f)},          // grape
        {rgb(0.95f, 0.45f, 0.0f), rgb(0.95f, 0.58f, 0.0f)},          // tangerine
        {rgb(0.29f, 0.0f, 0.45f), rgb(0.29f, 0.0f, 0.54f)},          // indigo
        {rgb(0.82f, 0.07f, 0.37f), rgb(0.9f, 0.07f, 0.37f)},         // ruby
    }};
    return pairs[static_cast<size_t>(aqua)];
}

bool isDark(Aqua aqua) {
    return aqua == Aqua::grape || aqua == Aqua::indigo || aqua == Aqua::ruby;
}

QColor textColor(Aqua aqua) {
    return isDark(aqua) ? QColor(Qt::white) : QColor(Qt::black);
}

TextShadow textShadow(Aqua aqua) {
    QColor color(isDark(aqua) ? Qt::black : Qt::white);
    color.setAlphaF(0.6f);
    return {color, 0.6, QPointF(0, 1)};
}

}  // namespace vell::Style
