#pragma once
// SPDX-License-Identifier: MIT
//
// Identicons: the pictures made so far, one for each user id shown and, on finer screens, one for
// each device ratio beside it. Nothing is ever dropped. For the GUI thread only.
//
//     const QImage picture = identicons().icon(sender.userID, context.ratio);
//     painter.drawImage(frame, picture);

#include <QHash>
#include <QImage>
#include <QString>
#include <utility>

#include "identity/identicons/identicon.h"

namespace vell {

class Identicons {
  public:
    Identicons() = default;
    Identicons(const Identicons&) = delete;
    Identicons& operator=(const Identicons&) = delete;

    /// The user's picture at Style::userIconSize, created on first request. The ratio is that of
    /// the screen; one below 1 is taken as 1. Null when the user id isn't Unicode text.
    [[nodiscard]] QImage icon(const QString& userID, qreal devicePixelRatio = 1.0);
    /// The pictures of scale 1.0 by user id.
    [[nodiscard]] const QHash<QString, QImage>& pictures() const { return pictures_; }

  private:
    Identicon generator_;
    QHash<QString, QImage> pictures_;
    QHash<std::pair<QString, qreal>, QImage> sharperPictures_;
};

/// The process-wide one.
[[nodiscard]] Identicons& identicons();

}  // namespace vell
