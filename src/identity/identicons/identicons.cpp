// SPDX-License-Identifier: MIT
#include "identity/identicons/identicons.h"

#include <optional>

#include "toolkit/style.h"

namespace vell {
namespace {

template <class Key>
QImage pictureOf(QHash<Key, QImage>& pictures, const Key& key, const Identicon& generator,
                 const QString& userID, qreal scale) {
    if (const auto known = pictures.constFind(key); known != pictures.cend()) return *known;
    const std::optional<QImage> made = generator.icon(userID, Style::userIconSize, scale);
    if (!made) return {};
    pictures.insert(key, *made);
    return *made;
}

}  // namespace

QImage Identicons::icon(const QString& userID, qreal devicePixelRatio) {
    if (devicePixelRatio <= 1) return pictureOf(pictures_, userID, generator_, userID, 1);
    return pictureOf(sharperPictures_, {userID, devicePixelRatio}, generator_, userID,
                     devicePixelRatio);
}

Identicons& identicons() {
    static Identicons shared;
    return shared;
}

}  // namespace vell
