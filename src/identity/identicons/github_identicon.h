#pragma once
// SPDX-License-Identifier: MIT
//
// GitHubIdenticon: five by five squares, mirrored about the middle column, in one colour on
// transparent ground.

#include "identity/identicons/icon_generator.h"

namespace vell {

class GitHubIdenticon final : public IconGenerator {
  public:
    static constexpr qint64 numberOfColumns = 5;
    /// The columns that carry bits; the others are their mirrors.
    static constexpr qint64 numberOfColumnComponents = 3;
    static constexpr qint64 numberOfRows = 5;
    /// Rows have no mirrors.
    static constexpr qint64 numberOfRowComponents = 5;

    using IconGenerator::icon;
    /// A fraction of a pixel in the size is cut off.
    [[nodiscard]] QImage icon(quint32 number, QSizeF size) const override;
};

}  // namespace vell
