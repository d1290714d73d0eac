// SPDX-License-Identifier: MIT
#include "app/windows/placement.h"

#include <QScreen>
#include <QWidget>
#include <algorithm>
#include <optional>

namespace vell {
namespace {

constexpr int cascadeStep = 32;

bool isExactlyOn(const QRect& frame, const QRect& other) {
    return (frame.topLeft() - other.topLeft()).manhattanLength() < cascadeStep;
}

/// The preferred place, and beside each other frame, nearest first.
QList<QPoint> candidates(const QRect& preferred, const QList<QRect>& clear, const QRect& screen) {
    QList<QPoint> places;
    const QSize size = preferred.size();
    const int lastX = std::max(screen.left(), screen.right() + 1 - size.width());
    const int lastY = std::max(screen.top(), screen.bottom() + 1 - size.height());
    const int x = std::clamp(preferred.x(), screen.left(), lastX);
    const int y = std::clamp(preferred.y(), screen.top(), lastY);
    for (const QRect& other : clear) {
        places.append({x, other.top() - size.height()});
        places.append({x, other.bottom() + 1});
        places.append({other.left() - size.width(), y});
        places.append({other.right() + 1, y});
    }
    const auto distance = [&](const QPoint& place) {
        return (place - preferred.topLeft()).manhattanLength();
    };
    std::ranges::stable_sort(places, {}, distance);
    places.prepend({x, y});
    return places;
}

}  // namespace

QPoint freePlace(const QRect& preferred, const QList<QRect>& clear, const QList<QRect>& siblings,
                 const QRect& screen) {
    const auto fits = [&](const QRect& frame) {
        return screen.contains(frame) &&
               std::ranges::none_of(clear, [&](auto& other) { return frame.intersects(other); });
    };
    const QList<QPoint> places = candidates(preferred, clear, screen);
    const auto cascaded = [&](const QPoint& place, const auto& isAllowed) -> std::optional<QPoint> {
        for (QRect frame(place, preferred.size()); isAllowed(frame);
             frame.translate(cascadeStep, cascadeStep)) {
            const auto isOn = [&](auto& other) { return isExactlyOn(frame, other); };
            if (std::ranges::none_of(siblings, isOn)) return frame.topLeft();
        }
        return std::nullopt;
    };
    for (const QPoint& place : places) {
        if (const auto found = cascaded(place, fits)) return *found;
    }
    const auto isOnScreen = [&](const QRect& frame) { return screen.contains(frame); };
    return cascaded(places.front(), isOnScreen).value_or(places.front());
}

QRect expectedFrame(const QWidget& window) {
    if (window.isVisible()) return window.frameGeometry();
    return {window.pos(), window.size().grownBy(usualFrame)};
}

void widen(QWidget& window, int points) {
    const QRect screen = window.screen()->availableGeometry();
    const int most = screen.right() - window.frameGeometry().right();
    if (window.isMaximized() || window.isFullScreen() || most < points) return;
    window.resize(window.width() + points, window.height());
}

}  // namespace vell
