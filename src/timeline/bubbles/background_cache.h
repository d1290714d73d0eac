#pragma once
// SPDX-License-Identifier: MIT
//
// BackgroundCache: finished bubble backgrounds. One of each (colours, direction, height, ratio) is
// kept, cut into a left, a middle and a right slice; painting one is three copies. A background
// higher than `tallest` device pixels is composed anew for what is visible. GUI thread only.

#include <QCache>
#include <QPainter>
#include <memory>

#include "timeline/bubbles/fancy_background.h"
#include "toolkit/style.h"

namespace vell {

/// The part of a bubble through which nothing is seen; empty where there is too little of it to be
/// worth the question. Device pixels.
[[nodiscard]] QRect opaquePart(const QRect& bubble, qreal ratio);

class BackgroundCache {
  public:
    static constexpr int tallest = 2048;
    static constexpr qsizetype defaultBytes = qsizetype(32) * 1024 * 1024;

    explicit BackgroundCache(qsizetype maxBytes = defaultBytes);

    /// Paints a bubble's background. `rect` and `visible` are device pixels as the painter counts
    /// them once its ratio is taken away; nothing outside `visible` need be painted.
    void paint(QPainter& painter, const QRect& rect, Style::Aqua aqua,
               ChatBubbleShape::Direction direction, qreal ratio, const QRect& visible);

    [[nodiscard]] qsizetype byteCount() const { return slices_.totalCost() + masks_.totalCost(); }

  private:
    struct MaskKey {
        ChatBubbleShape::Direction direction;
        QSize size;
        qreal ratio;
        friend bool operator==(const MaskKey&, const MaskKey&) = default;
        friend size_t qHash(const MaskKey& key, size_t seed = 0) {
            return qHashMulti(seed, static_cast<int>(key.direction), key.size.width(),
                              key.size.height(), key.ratio);
        }
    };
    struct Key {
        MaskKey masks;
        Style::Aqua aqua;
        int height;
        friend bool operator==(const Key&, const Key&) = default;
        friend size_t qHash(const Key& key, size_t seed = 0) {
            return qHashMulti(seed, key.masks, static_cast<int>(key.aqua), key.height);
        }
    };

    std::shared_ptr<const BackgroundMasks> masks(const MaskKey& key);
    QImage compose(const Key& key, int firstRow, int rowCount);

    QCache<MaskKey, std::shared_ptr<const BackgroundMasks>> masks_;
    QCache<Key, QImage> slices_;
};

}  // namespace vell
