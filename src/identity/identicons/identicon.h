#pragma once
// SPDX-License-Identifier: MIT
//
// Identicon: four by four cells of simple shapes around a point of symmetry, in one colour on
// transparent ground. The picture of every sender whom the address book has none of.

#include <array>
#include <span>

#include "identity/identicons/icon_generator.h"

namespace vell {

class Identicon final : public IconGenerator {
  public:
    static constexpr qint64 numberOfRows = 4;
    static constexpr qint64 numberOfColumns = 4;

    /// The cell shapes: polygons over a lattice of five by five points that spans the cell; point p
    /// lies at column p mod 5 from the left and row p / 5 from the bottom.
    static const std::array<std::span<const qint64>, 15> cellTypes;
    /// The shapes allowed in the centre; 15 is the first one with filled and empty exchanged.
    static constexpr std::array<qint64, 4> centerCellTypes = {0, 4, 8, 15};

    using IconGenerator::icon;
    /// The size is rounded up to whole pixels.
    [[nodiscard]] QImage icon(quint32 number, QSizeF size) const override;
};

}  // namespace vell
