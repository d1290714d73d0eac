#pragma once
// SPDX-License-Identifier: MIT
//
// ScaledPictures: small pictures in the sizes they are painted in, each scaled once. Bounded in
// bytes. GUI thread only.

#include <QCache>
#include <QImage>

namespace vell {

class ScaledPictures {
  public:
    static constexpr qsizetype defaultBytes = qsizetype(4) * 1024 * 1024;

    explicit ScaledPictures(qsizetype maxBytes = defaultBytes) : images_(maxBytes) {}

    /// The picture at exactly this many pixels.
    [[nodiscard]] QImage image(const QImage& picture, QSize pixels);

    /// One for all windows.
    static ScaledPictures& shared();

  private:
    struct Key {
        qint64 picture;
        QSize pixels;
        friend bool operator==(const Key&, const Key&) = default;
        friend size_t qHash(const Key& key, size_t seed = 0) {
            return qHashMulti(seed, key.picture, key.pixels.width(), key.pixels.height());
        }
    };

    QCache<Key, QImage> images_;
};

}  // namespace vell
